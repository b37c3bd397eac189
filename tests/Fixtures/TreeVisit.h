#pragma once

#include <string>

#include "Platform/Posix/TreeWalk.h"
#include "Text/FunctionRef.h"

namespace orvane::test {

class TestVolume;

/// Visits everything below a folder of the volume on one thread, as its sizes are measured. A path that names
/// no real folder visits nothing.
void visitTree(const TestVolume& mac, const std::string& path, WalkOptions options,
               FunctionRef<void(const WalkEntry&)> visit);

}  // namespace orvane::test
