#pragma once

#include <memory>
#include <string>

#include "Platform/Posix/Volume.h"
#include "Platform/PrivilegedRunner.h"

namespace orvane {

/// Gives requests to the Mac's script runner, whose script asks for an administrator once and then runs all
/// of the commands. An item that no longer lies in the folder in which it was shown is left out, with the
/// reason; when none is left, nothing is run, and that is success.
///
/// Thread-safe. A run blocks the calling thread for as long as the prompt and the commands take.
std::unique_ptr<PrivilegedRunner> makeScriptRunner(std::shared_ptr<const Volume> volume,
                                                   std::string program = "/usr/bin/osascript");

}  // namespace orvane
