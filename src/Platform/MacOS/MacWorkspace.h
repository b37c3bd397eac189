#pragma once

#include <memory>

#include "Platform/Workspace.h"

namespace orvane {

/// Running applications and the Finder, as the Mac's workspace knows them. Thread-safe.
std::unique_ptr<Workspace> makeWorkspace();

}  // namespace orvane
