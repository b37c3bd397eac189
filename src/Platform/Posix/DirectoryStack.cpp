#include "Platform/Posix/DirectoryStack.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "Platform/Posix/FileStatus.h"

namespace orvane {

Result<FileDescriptor> openAbove(int folder, const FileIdentity& expected) {
    FileDescriptor above(::openat(folder, "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!above) return errnoFailure();
    if (identityOf(above.get()) != expected)
        return tl::unexpected(std::error_code(ESTALE, std::generic_category()));
    return above;
}

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
    if (!folder) return folder.error();
    enter(name, std::move(*folder));
    return {};
}

void DirectoryStack::enter(std::string_view name, FileDescriptor folder) {
    if (levels_.size() - firstOpen_ == maximumOpenFolders) closeUppermost();
    if (!levels_.empty()) {
        path(name);
        path_ += '/';
    }
    levels_.push_back({.prefixLength = path_.size(), .identity = {}, .remaining = {}});
    here().read(std::move(folder));
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
    // One that cannot be told is not found again.
    level.identity = identityOf(reader.folder()).value_or(FileIdentity{});
    // Its entries are kept rather than a position in it: not every file system finds a position again, least
    // of all while entries are being removed.
    level.remaining = reader.takeRemaining();
    reader.release();
    ++firstOpen_;
    return true;
}

std::error_code DirectoryStack::reopenAbove(int folder) {
    auto& level = levels_.back();
    auto above = openAbove(folder, level.identity);
    if (!above) return above.error();
    firstOpen_ = levels_.size() - 1;
    here().resume(std::move(*above), std::move(level.remaining));
    return {};
}

}  // namespace orvane
