#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "Programs/Elevation/RootShell.h"

namespace orvane {

/// What `orvane-elevate` does with its arguments (those after its name). It takes the vector of the Mac's
/// script runner and becomes the shell that runs the command text of that request, once; where the part that
/// runs as root is installed, by way of that.
///
/// Comes back, with an exit status, only when no shell was run: 0 after --help and --version and for a
/// request without items, 2 with one line on `err` for arguments that are no request, 127 with one line on
/// `err` when the shell cannot be reached.
int elevate(const std::vector<std::string>& arguments, const RootShell& shell, std::ostream& out,
            std::ostream& err);

}  // namespace orvane
