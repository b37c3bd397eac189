#pragma once

#include <memory>
#include <string>

#include "Platform/Posix/Volume.h"
#include "Platform/ScriptRunner.h"

namespace orvane {

/// Runs `program`, which takes the arguments of the Mac's script runner, once per request. The paths that it
/// is given are this machine's own, resolved inside the volume: no link on the disk that is looked at can
/// lead a shell elsewhere. An item whose path does not resolve names nothing and is left out; when none is
/// left, nothing is run, and that is success. A Trash that cannot be used is an error before anything is run.
///
/// Thread-safe. A run blocks the calling thread, which must live on until the run has ended.
std::unique_ptr<ScriptRunner> makeScriptRunner(std::shared_ptr<const Volume> volume, std::string program);

}  // namespace orvane
