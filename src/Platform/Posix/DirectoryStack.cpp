#include "Platform/Posix/DirectoryStack.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "Platform/Posix/FileStatus.h"

namespace orvane {

const std::string& DirectoryStack::path(std::string_view name) {
    path_.resize(levels_.back().prefixLength);
    return path_.append(name);
}

Result<FileDescriptor> DirectoryStack::open(FunctionRef<FileDescriptor()> open) {
    FileDescriptor folder = open();
    while (!folder && isShortOfDescriptors(currentError())) {
        const auto error = currentError();
        if (!closeUppermost()) return tl::unexpected(error);
        folder = open();
    }
    if (!folder) return errnoFailure();
    return folder;
}

std::error_code DirectoryStack::enter(std::string_view name, FunctionRef<FileDescriptor()> open) {
    auto folder = this->open(open);
    return folder ? enter(name, std::move(*folder)) : folder.error();
}

std::error_code DirectoryStack::enter(std::string_view name, FileDescriptor folder) {
    if (levels_.size() - firstOpen_ == maximumOpenFolders && !closeUppermost()) return currentError();
    if (!levels_.empty()) {
        path(name);
        path_ += '/';
    }
    levels_.push_back({.prefixLength = path_.size(), .identity = {}, .remaining = {}});
    here().read(std::move(folder));
    return {};
}

Result<FileDescriptor> DirectoryStack::leave() {
    auto left = here().release();
    levels_.pop_back();
    if (levels_.empty() || firstOpen_ < levels_.size()) return left;
    if (const auto error = reopenAbove(left.get())) {
        levels_.clear();
        firstOpen_ = 0;
        return tl::unexpected(error);
    }
    return left;
}

/// Makes room by closing an open folder, but never the deepest one.
bool DirectoryStack::closeUppermost() {
    if (firstOpen_ + 1 >= levels_.size()) return false;
    auto& level = levels_[firstOpen_];
    auto& reader = readers_[firstOpen_ % maximumOpenFolders];
    const auto identity = identityOf(reader.folder());
    if (!identity) return false;
    level.identity = *identity;
    // Its entries are kept rather than a position in it: not every file system finds a position again, least
    // of all while entries are being removed.
    level.remaining = reader.takeRemaining();
    reader.release();
    ++firstOpen_;
    return true;
}

std::error_code DirectoryStack::reopenAbove(int folder) {
    FileDescriptor above(::openat(folder, "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!above) return currentError();
    auto& level = levels_.back();
    if (identityOf(above.get()) != level.identity) return {ESTALE, std::generic_category()};
    firstOpen_ = levels_.size() - 1;
    here().resume(std::move(above), std::move(level.remaining));
    return {};
}

}  // namespace orvane
