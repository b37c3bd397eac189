#include "tests/Fixtures/TreeVisit.h"

#include <fcntl.h>

#include <utility>

#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {

void visitTree(const TestVolume& mac, const std::string& path, WalkOptions options,
               FunctionRef<void(const WalkEntry&)> visit) {
    auto folder = mac.volume()->openPath(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK);
    if (!folder) return;
    static_cast<void>(
        walkTree(std::move(*folder), options, visit, [](const FileDescriptor&) { return false; }));
}

}  // namespace orvane::test
