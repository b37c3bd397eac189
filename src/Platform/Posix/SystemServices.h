#pragma once

#include <memory>
#include <string>

#include "Platform/Machine.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

/// Gives the machine what each system has of its own: the bundle loader, the workspace and the privileged
/// runner. Its file manager, for that home, is there already. The implementation is the platform's.
void addSystemServices(Machine& machine, const std::shared_ptr<const Volume>& volume, const std::string& home,
                       const MachineOptions& options);

}  // namespace orvane
