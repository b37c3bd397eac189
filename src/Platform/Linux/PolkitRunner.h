#pragma once

#include <memory>
#include <string>

#include "Platform/Posix/Volume.h"
#include "Platform/PrivilegedRunner.h"

namespace orvane {

/// Hands requests to the part that runs as root: for root itself straight away, for everyone else through
/// polkit's prompt, if that part is installed where only root can change it. `ownPart` is the one that stands
/// beside the running program; run by anybody but root, it can only say that it needs to be installed.
///
/// What the part would refuse, whether because no plan can hold it or because its folder is not the one that
/// was shown, is left out of the order, with the reason, and so is an item whose folder is gone. When none is
/// left, nothing is run, and that is success. A Trash that cannot be used is an error before anything is run.
///
/// Thread-safe. A run blocks the calling thread, which must live on until the run has ended.
std::unique_ptr<PrivilegedRunner> makePrivilegedRunner(std::shared_ptr<const Volume> volume,
                                                       const std::string& home, std::string ownPart);

/// The installed part that runs as root. polkit knows it by this path.
std::string installedRootPart();

/// What a run wrote to standard error, for a person to read: what pkexec says when permission was not
/// obtained is put in plain words; everything else, the part's own words too, stays as it is.
std::string inPlainWords(int terminationStatus, std::string standardError);

}  // namespace orvane
