#include "Programs/Elevation/RootScope.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Result.h"

namespace orvane {

namespace {

using Refusal = tl::unexpected<std::string>;

}  // namespace

tl::expected<FileDescriptor, std::string> openRoot(const RemovalOrder& order) {
    const FileDescriptor machine(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    auto root = openInRootWithoutLinks(machine.get(), order.root.c_str(), O_PATH | O_DIRECTORY);
    const auto refusal = [](const std::error_code& error) {
        return Refusal("the volume cannot be opened: " + error.message());
    };
    if (!root) return refusal(currentError());
    const auto identity = identityOf(root.get());
    if (!identity) return refusal(identity.error());
    if (order.rootIdentity != *identity) {
        return Refusal("another folder has come to the place of the volume");
    }
    return root;
}

tl::expected<RootScope, std::string> openScope(FileDescriptor root, const std::string& home,
                                               RemovalMode mode) {
    auto served = openServedHome(root.get(), home);
    if (!served) return Refusal(served.error());
    RootScope scope{std::move(root), std::move(*served), {}};
    if (mode == RemovalMode::permanent) return scope;
    scope.trash = FileDescriptor(
        ::openat(scope.home.folder.get(), ".Trash", O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!scope.trash || ::fstat(scope.trash.get(), &status) != 0) {
        return Refusal("the Trash cannot be used: " + currentError().message());
    }
    if (status.st_uid != scope.home.owner) return Refusal("the Trash is another user's than the home");
    return scope;
}

}  // namespace orvane
