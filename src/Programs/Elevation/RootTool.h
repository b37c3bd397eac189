#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Result.h"
#include "Programs/Elevation/RootScope.h"

namespace orvane {

/// Gives an entry of a folder, with everything in it, to an owner. No link is followed (a link itself is
/// given), nothing that is mounted is entered, and a file that has another name elsewhere stays whose it is:
/// it would be given away under that name as well. What cannot be given does not stop the rest; the first
/// error is the one returned (EMLINK for such a file). A folder is given after what is in it.
std::error_code giveTree(int folder, const char* name, uid_t owner, gid_t group);

/// What a step is handed: the volume's root folder, and the memory in which a move leaves the identity of
/// what it has moved, by the item's number: only that is given away, whatever has its name in the Trash by
/// then.
struct StepDescriptors {
    FileDescriptor root;
    FileDescriptor moved;
};

/// One step of the command text, as the root part's shell runs it: "unload", "move", "own" or "remove" and
/// what the text has after it. The paths are only names: what they mean stands in `order`, the text of an
/// order that has been checked, and every folder on the way to it is opened here anew, below the root, and
/// must be the one that the order names. What is not in the order is not touched.
///
/// Gives 0, also when the item could not be removed: what became of it is read off the disk, and why is a
/// line "NUMBER: reason" on `err`, with the item's number in the order. 2, with a line, for arguments that
/// are no step.
int runStep(const std::vector<std::string>& arguments, StepDescriptors descriptors, std::string_view order,
            std::ostream& err);

}  // namespace orvane
