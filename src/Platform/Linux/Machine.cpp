#include "Platform/Machine.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Linux/ElevateScriptRunner.h"
#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

namespace {

using Failure = tl::unexpected<std::string>;

std::optional<std::string> environment(const char* name) {
    const char* const value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

std::string ownHome() {
    if (auto home = environment("HOME"); home && home->starts_with('/')) return *home;
    const passwd* const entry = ::getpwuid(::geteuid());
    return entry != nullptr ? entry->pw_dir : "/";
}

/// Where programs of this machine keep their data.
std::string ownDataFolder(const std::string& home) {
    if (auto folder = environment("XDG_DATA_HOME"); folder && folder->starts_with('/')) return *folder;
    return home + "/.local/share";
}

/// The users' folders of a Mac's disk.
std::vector<std::string> homesOn(FileManager& fileManager) {
    std::vector<std::string> homes;
    const auto entries =
        fileManager.contentsOfDirectory(FileURL::fromPath("/Users", true), {.skipsHiddenFiles = true});
    if (!entries) return homes;
    for (const auto& entry : *entries) {
        const auto name = entry.url.lastPathComponent();
        if (entry.isDirectory && name != "Shared" && name != "Guest") homes.push_back(entry.url.path());
    }
    std::sort(homes.begin(), homes.end());
    return homes;
}

tl::expected<std::string, std::string> onlyHomeOn(const std::shared_ptr<const Volume>& volume,
                                                  const std::string& root) {
    const auto homes = homesOn(*makeFileManager(volume, "/", "/"));
    if (homes.empty()) return Failure("'" + root + "' holds no user's home in /Users; give one with --home");
    if (homes.size() == 1) return homes.front();
    std::string line = "'" + root + "' holds several homes; give one of them with --home:";
    for (const auto& home : homes) line += " '" + home + "'";
    return Failure(std::move(line));
}

/// The path without slashes at its end, if it is one of a folder on the volume.
tl::expected<std::string, std::string> homeOn(const Volume& volume, std::string home) {
    if (!home.starts_with('/')) return Failure("the home '" + home + "' is not an absolute path");
    while (home.size() > 1 && home.ends_with('/')) home.pop_back();
    const auto folder = volume.openPath(home, O_PATH | O_DIRECTORY);
    if (!folder) return Failure("the home '" + home + "' cannot be used: " + folder.error().message());
    return home;
}

std::string besideTheRunningProgram(const std::string& name) {
    std::string path(4096, '\0');
    const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path.substr(0, path.rfind('/') + 1) + name;
}

}  // namespace

tl::expected<Machine, std::string> makeMachine(const MachineOptions& options) {
    const auto root = options.root.value_or("/");
    auto volume = Volume::open(root);
    if (!volume) return Failure("the root '" + root + "' cannot be used: " + volume.error().message());

    const bool isOwnMachine = !options.root && !options.home;
    auto home = options.home   ? homeOn(**volume, *options.home)
                : options.root ? onlyHomeOn(*volume, root)
                               : ownHome();
    if (!home) return Failure(std::move(home.error()));
    auto applicationSupport = isOwnMachine ? ownDataFolder(*home) : *home + "/Library/Application Support";

    Machine machine;
    machine.fileManager = makeFileManager(*volume, *home, std::move(applicationSupport));
    machine.bundleLoader = makeBundleLoader(*machine.fileManager);
    machine.workspace = makeWorkspace(*volume, *machine.bundleLoader);
    machine.scriptRunner =
        makeScriptRunner(*volume, options.scriptRunner.value_or(besideTheRunningProgram("orvane-elevate")));
    machine.localizedText = makeLocalizedText();
    machine.clock = makeClock();
    return machine;
}

}  // namespace orvane
