#pragma once

#include <sys/types.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// What the stand-ins for the Mac's system calls know.
struct SystemCallState {
    std::map<std::pair<dev_t, ino_t>, unsigned> flags;
    /// Where something is mounted, besides the root.
    std::vector<std::string> mounts;
    /// What the system keeps from programs: nothing in these folders can be looked at, not even whether it is
    /// there.
    std::set<std::pair<dev_t, ino_t>> hiddenFolders;
    /// How often something was flushed to the disk itself, and what that fails with; 0 for not at all.
    int fullFlushes = 0;
    int fullFlushError = 0;
};

/// One for the test that runs, which may change it.
SystemCallState& systemCallState();

}  // namespace orvane::test
