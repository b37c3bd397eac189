#pragma once

#include <string>

namespace orvane {

/// Shows a file in the desktop's file viewer: by the call that all of them answer on the session's bus, or,
/// where none answers, by opening the folder that the file lies in. `machinePath` is this machine's own
/// absolute path.
///
/// Waits for neither, and quietly does nothing where there is no desktop session. Any thread.
void showInFileViewer(const std::string& machinePath);

}  // namespace orvane
