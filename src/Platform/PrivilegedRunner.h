#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Models/FileIdentity.h"
#include "Models/RemovalMode.h"

namespace orvane {

/// What is asked of the administrator's rights, all of it behind one prompt. Paths are the Mac's own.
struct PrivilegedRequest {
    struct Item {
        /// A daemon is unloaded before it is removed.
        enum class Kind { item, daemon };

        Kind kind = Kind::item;
        std::string source;
        /// Where it goes in the Trash; empty when it is deleted.
        std::string destination;
        /// The folder that the item lay in when it was shown; absent for the one that it lies in now.
        std::optional<FileIdentity> folder{};

        friend bool operator==(const Item&, const Item&) = default;
    };

    RemovalMode mode = RemovalMode::trash;
    std::vector<Item> items;

    friend bool operator==(const PrivilegedRequest&, const PrivilegedRequest&) = default;
};

/// How a run ended.
struct PrivilegedOutcome {
    /// Why it could not be started, for a person to read; empty when it was.
    std::string launchError{};
    /// 0 is success. A runner that was killed reports 128 plus the signal.
    int terminationStatus = 0;
    /// Everything that it wrote to standard error, as it is.
    std::string standardError{};
    /// Why an item was left where it is, by its place in the request, for a person to read; empty where
    /// nothing is known. May be shorter than the request.
    std::vector<std::string> reasons{};
};

/// Carries out a request with administrator rights, once, behind one authorization prompt.
class PrivilegedRunner {
  public:
    virtual ~PrivilegedRunner() = default;

    /// Blocks until the run has ended. What became of an item is read off the disk afterwards.
    virtual PrivilegedOutcome run(const PrivilegedRequest& request) = 0;
};

}  // namespace orvane
