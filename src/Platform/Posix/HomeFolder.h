#pragma once

#include <memory>
#include <string>
#include <tl/expected.hpp>
#include <vector>

#include "Platform/Machine.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

/// Whose files a program looks after, as absolute paths inside the volume.
struct HomeFolder {
    std::string path;
    /// Where that user's programs keep their data; need not exist.
    std::string applicationSupport;
};

/// The home of the user who runs the program, and where the programs of this machine keep their data. The
/// path is empty where nobody knows it. The implementation is the platform's.
HomeFolder ownHomeFolder();

/// The home that the options name; without one, the only user's on a root that they name, else the user's
/// own. Or why there is none. On a Mac volume programs keep their data where the Mac has it; on this machine
/// itself, where the desktop has it.
tl::expected<HomeFolder, std::string> homeFolder(const std::shared_ptr<const Volume>& volume,
                                                 const MachineOptions& options);

/// The homes in /Users, sorted: real folders but those that everybody and guests use. None where there is no
/// such folder.
Result<std::vector<std::string>> homesOn(const std::shared_ptr<const Volume>& volume);

}  // namespace orvane
