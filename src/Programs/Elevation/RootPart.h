#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "Programs/Elevation/RootShell.h"

namespace orvane {

/// The commands of an order that may be carried out, or in one line why it is refused. `announced` is the
/// number of items that the administrator was shown ("3 items"): what was authorized is what is done.
/// `caller` is the id of the user who asked, in decimal, as the prompt knows it: nobody else is made the
/// owner of anything, whatever name the order holds.
tl::expected<std::string, std::string> authorizedCommands(std::string_view order, std::string_view announced,
                                                          std::string_view caller);

/// What the root-owned program does, with rights already granted: it reads an order from standard input and
/// becomes the shell that runs its commands, once. It believes nothing that it is given.
///
/// Comes back, with 2 and one line on `err`, only when nothing was run.
int removeAsRoot(std::string_view announced, std::string_view caller, const RootShell& shell,
                 std::ostream& err);

}  // namespace orvane
