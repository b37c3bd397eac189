#include "Platform/MacDisks.h"

namespace orvane {

// A Mac has its own disk, and looks at no other.

bool looksAtMacDisks() {
    return false;
}

std::vector<std::string> mountedFolders() {
    return {};
}

MacDisks macDisksAmong(const std::vector<std::string>& /*folders*/, std::chrono::milliseconds /*patience*/) {
    return {};
}

}  // namespace orvane
