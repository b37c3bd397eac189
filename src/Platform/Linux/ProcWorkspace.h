#pragma once

#include <memory>

#include "Platform/Bundle.h"
#include "Platform/Posix/Volume.h"
#include "Platform/Workspace.h"

namespace orvane {

/// Running applications by /proc: the processes whose executable lies inside an application bundle of the
/// volume, in ascending order of their ids. A process's bundle is the innermost one around its executable;
/// its name is that bundle's display name, else its short name, else its file name without extension.
/// Processes that this user cannot look into are none.
///
/// Thread-safe. The bundle loader outlives it.
std::unique_ptr<Workspace> makeWorkspace(std::shared_ptr<const Volume> volume,
                                         const BundleLoader& bundleLoader);

}  // namespace orvane
