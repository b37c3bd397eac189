#include "Views/FrontDoor/DiskNotice.h"

#include <algorithm>

#include "Views/DisplayText.h"

namespace orvane {

QString diskNotice(const MacDisk& disk, const std::string& home) {
    if (disk.isReadOnly)
        return QStringLiteral(
            "This disk is mounted read-only: nothing can be removed until it is mounted for writing.");
    const auto opened = std::ranges::find(disk.homes, home, &MacHome::path);
    if (opened == disk.homes.end() || opened->isOwn) return {};
    return QStringLiteral(
               "The home “%1” is not yours on this machine: removing from it needs an administrator.")
        .arg(displayText(home));
}

}  // namespace orvane
