#include "Platform/Linux/FileViewer.h"

#include <unistd.h>

#include <cstdlib>

#include "Models/FileURL.h"
#include "Platform/Linux/Spawn.h"

namespace orvane {

std::vector<std::string> fileViewerCommand(const std::string& machinePath) {
    // A URL as text holds neither double quotes nor backslashes, so this is one string to gdbus.
    const auto list = "[\"" + FileURL::fromPath(machinePath, false).absoluteString() + "\"]";
    return {"/usr/bin/gdbus",
            "call",
            "--session",
            "--dest",
            "org.freedesktop.FileManager1",
            "--object-path",
            "/org/freedesktop/FileManager1",
            "--method",
            "org.freedesktop.FileManager1.ShowItems",
            list,
            ""};
}

void showInFileViewer(const std::string& machinePath) {
    const char* const bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (bus == nullptr || *bus == '\0') return;
    const auto call = fileViewerCommand(machinePath);
    if (::access(call.front().c_str(), X_OK) != 0) return;
    // The shell puts the call into the background and ends: nobody waits for a slow desktop, and the call's
    // end is nobody's to collect here.
    std::vector<std::string> command{"/bin/sh", "-c", "\"$@\" </dev/null >/dev/null 2>&1 &", "sh"};
    command.insert(command.end(), call.begin(), call.end());
    if (const auto child = spawn(command)) waitForTermination(*child);
}

}  // namespace orvane
