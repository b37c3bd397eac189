#include "Platform/Posix/SystemServices.h"

#include "Platform/MacOS/MacBundleLoader.h"
#include "Platform/MacOS/MacWorkspace.h"
#include "Platform/MacOS/ScriptRunner.h"

namespace orvane {

void addSystemServices(Machine& machine, const std::shared_ptr<const Volume>& volume,
                       const std::string& /*home*/, const MachineOptions& /*options*/) {
    machine.privilegedRunner = makeScriptRunner(volume);
    machine.bundleLoader = makeMacBundleLoader(*machine.fileManager);
    machine.workspace = makeWorkspace();
}

}  // namespace orvane
