#include "Platform/Posix/SystemServices.h"

#include <filesystem>
#include <system_error>

#include "Platform/Linux/PolkitRunner.h"
#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"

namespace orvane {

namespace {

/// The part that runs as root beside the running program.
std::string ownRootPart() {
    std::error_code ignored;
    return (std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / "orvane-remove-as-root")
        .string();
}

}  // namespace

void addSystemServices(Machine& machine, const std::shared_ptr<const Volume>& volume, const std::string& home,
                       const MachineOptions& options) {
    machine.privilegedRunner = makePrivilegedRunner(volume, home, options.rootPart.value_or(ownRootPart()));
    machine.bundleLoader = makeBundleLoader(*machine.fileManager, environmentLanguages());
    machine.workspace = makeWorkspace(volume, *machine.bundleLoader);
}

}  // namespace orvane
