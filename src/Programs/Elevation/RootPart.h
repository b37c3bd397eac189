#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "Platform/PrivilegedScript.h"
#include "Programs/Elevation/RootScope.h"

namespace orvane {

/// The tools of the root part, for the command text: the words of one program, which gets its descriptors
/// from the shell. `program` is its absolute path.
PrivilegedTools rootTools(const std::string& program);

/// An order that may be carried out as a whole.
struct CheckedOrder {
    RemovalOrder order;
    FileDescriptor root;
    /// Who owns what goes to the Trash, as a number: a Mac's disk has users of its own.
    uid_t owner = 0;
};

/// The order, if it may be carried out, or in one line why it is refused. Nothing that it says is believed.
///
/// - `announced` is what the administrator was shown, and must be what `promptText` makes of the order.
/// - `caller` is the id of the user who asks, in decimal, as the prompt knows it.
/// - The volume's root must be the folder that the order names, belong to root, the caller or the home's
/// owner, and
///   not be one that everybody can write to. Each folder down to the home must belong to root, the home's
///   owner or the owner of the root folder.
/// - On the machine's own disk the home is the caller's (or the caller is root). Its owner, nobody else, gets
///   what goes to the Trash.
/// - Every item is one that a plan of that home can hold, in the folder that was shown, and not a folder that
///   applications share; every destination is a name directly in that home's Trash, a real folder of its
///   owner.
tl::expected<CheckedOrder, std::string> checkedOrder(std::string_view order, std::string_view announced,
                                                     std::string_view caller);

/// What the root-owned program does, with rights already granted: it reads an order from standard input,
/// checks it as a whole, and becomes the shell that runs its commands, once, with the tools of `toolProgram`.
/// From then on nothing but their end ends them: they have a session of their own, and no signal of the
/// terminal's nor a pipe that breaks reaches them.
///
/// Comes back, with 2 and one line on `err`, only when nothing was run.
int removeAsRoot(std::string_view announced, std::string_view caller, const std::string& toolProgram,
                 std::ostream& err);

}  // namespace orvane
