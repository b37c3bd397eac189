#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "Models/FileURL.h"
#include "Platform/Posix/HomeFolder.h"

namespace orvane {

namespace {

/// A folder that a variable of the environment names; a path that depends on the current folder does not
/// count.
std::optional<std::string> folderFromEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || value[0] != '/') return std::nullopt;
    return value;
}

std::string userHome() {
    if (auto path = folderFromEnvironment("HOME")) return *path;
    const passwd* const user = ::getpwuid(::geteuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

}  // namespace

HomeFolder ownHomeFolder() {
    auto path = userHome();
    if (path.starts_with('/')) path = FileURL::fromPath(path, true).standardized().path();
    return {path, folderFromEnvironment("XDG_DATA_HOME").value_or(path + "/.local/share")};
}

}  // namespace orvane
