#pragma once

#include <string>
#include <vector>

namespace orvane {

/// The call that asks the desktop's file viewer to show a file: a program and its arguments. `machinePath` is
/// this machine's own absolute path.
std::vector<std::string> fileViewerCommand(const std::string& machinePath);

/// Makes that call without waiting for the answer. Quietly nothing where there is no desktop session.
void showInFileViewer(const std::string& machinePath);

}  // namespace orvane
