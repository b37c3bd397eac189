#include "Platform/Linux/FileViewer.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "Models/FileURL.h"
#include "Platform/Posix/Process.h"

namespace orvane {

namespace {

// The shell does its work in the background and ends: nobody waits for a slow desktop, and the end of the
// work is nobody's to collect here. $1 is the list of the file's URL as gdbus reads it, $2 the folder's URL,
// and an empty one is not tried. Without a screen the opener would look for a browser that does without.
constexpr const char* showing = R"(
{
    [ -n "$1" ] && gdbus call --session --dest org.freedesktop.FileManager1 \
        --object-path /org/freedesktop/FileManager1 \
        --method org.freedesktop.FileManager1.ShowItems "$1" '' ||
    { [ -n "$2" ] && xdg-open "$2"; }
} </dev/null >/dev/null 2>&1 &
)";

/// Empty where it is not set.
std::string environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : std::string();
}

/// Where neither is there, gdbus would start a bus of its own.
bool hasSessionBus() {
    if (!environmentVariable("DBUS_SESSION_BUS_ADDRESS").empty()) return true;
    const auto runtimeFolder = environmentVariable("XDG_RUNTIME_DIR");
    return !runtimeFolder.empty() && ::access((runtimeFolder + "/bus").c_str(), F_OK) == 0;
}

bool hasScreen() {
    return !environmentVariable("DISPLAY").empty() || !environmentVariable("WAYLAND_DISPLAY").empty();
}

std::string urlText(std::string_view path, bool isDirectory) {
    return FileURL::fromPath(path, isDirectory).absoluteString();
}

}  // namespace

void showInFileViewer(const std::string& machinePath) {
    // A URL as text holds neither double quotes nor backslashes, so this is one string to gdbus.
    const auto items = hasSessionBus() ? "[\"" + urlText(machinePath, false) + "\"]" : std::string();
    const auto slash = machinePath.rfind('/');
    const auto folder =
        hasScreen() ? urlText(std::string_view(machinePath).substr(0, slash + 1), true) : std::string();
    if (items.empty() && folder.empty()) return;
    if (const auto child = startProgram({"/bin/sh", "-c", showing, "sh", items, folder}))
        waitForTermination(*child);
}

}  // namespace orvane
