#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Platform/Bundle.h"
#include "Platform/Clock.h"
#include "Platform/FileManager.h"
#include "Platform/PrivilegedRunner.h"
#include "Platform/Workspace.h"
#include "Text/LocalizedText.h"

namespace orvane {

struct MachineOptions {
    /// A folder laid out like a Mac's disk; absent for the machine's own root.
    std::optional<std::string> root;
    /// The user's home, a path inside the root; absent for the user's own, or the one that the root holds.
    std::optional<std::string> home;
    /// The part that runs as root; absent for the one beside the running program. Anybody but root uses the
    /// installed one instead.
    std::optional<std::string> rootPart;
};

/// Every platform service for one volume. Owned by the executable's object graph and outlives all services.
struct Machine {
    std::unique_ptr<FileManager> fileManager;
    std::unique_ptr<BundleLoader> bundleLoader;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<PrivilegedRunner> privilegedRunner;
    std::unique_ptr<LocalizedText> localizedText;
    std::unique_ptr<Clock> clock;
};

/// The services of this machine, or one clear line that says why there are none (a root that is no folder, a
/// home that is not a path, several homes to choose from).
tl::expected<Machine, std::string> makeMachine(const MachineOptions& options);

}  // namespace orvane
