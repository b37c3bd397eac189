#include "Platform/Machine.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Platform/Linux/HomeFolder.h"
#include "Platform/Linux/PolkitRunner.h"
#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

namespace {

/// A name can hold anything, a line break or a terminal's control codes too; the line that tells it cannot.
tl::unexpected<std::string> oneLine(std::string text) {
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return tl::unexpected(std::move(text));
}

/// The part that runs as root beside the running program.
std::string ownRootPart() {
    std::error_code ignored;
    return (std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / "orvane-remove-as-root")
        .string();
}

}  // namespace

tl::expected<Machine, std::string> makeMachine(const MachineOptions& options) {
    const auto root = options.root.value_or("/");
    auto volume = Volume::open(root);
    if (!volume) return oneLine("the root '" + root + "' cannot be used: " + volume.error().message());
    auto home = homeFolder(*volume, options);
    if (!home) return oneLine(std::move(home.error()));

    Machine machine;
    machine.privilegedRunner =
        makePrivilegedRunner(*volume, home->path, options.rootPart.value_or(ownRootPart()));
    machine.fileManager =
        makeFileManager(*volume, std::move(home->path), std::move(home->applicationSupport));
    machine.bundleLoader = makeBundleLoader(*machine.fileManager);
    machine.workspace = makeWorkspace(*volume, *machine.bundleLoader);
    machine.localizedText = makeLocalizedText();
    machine.clock = makeClock();
    return machine;
}

}  // namespace orvane
