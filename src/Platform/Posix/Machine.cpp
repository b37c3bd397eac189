#include "Platform/Machine.h"

#include <algorithm>
#include <utility>

#include "Platform/Posix/HomeFolder.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/SystemServices.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

namespace {

/// A name can hold anything, a line break or a terminal's control codes too; the line that tells it cannot.
tl::unexpected<std::string> oneLine(std::string text) {
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return tl::unexpected(std::move(text));
}

}  // namespace

tl::expected<Machine, std::string> makeMachine(const MachineOptions& options) {
    const auto root = options.root.value_or("/");
    auto volume = Volume::open(root);
    if (!volume) return oneLine("the root '" + root + "' cannot be used: " + volume.error().message());
    auto home = homeFolder(*volume, options);
    if (!home) return oneLine(std::move(home.error()));

    Machine machine;
    machine.fileManager = makeFileManager(*volume, home->path, std::move(home->applicationSupport));
    addSystemServices(machine, *volume, home->path, options);
    machine.localizedText = makeLocalizedText();
    machine.clock = makeClock();
    return machine;
}

}  // namespace orvane
