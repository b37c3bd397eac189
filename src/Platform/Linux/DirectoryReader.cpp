#include "Platform/Posix/DirectoryReader.h"

#include <dirent.h>

#include <cerrno>

namespace orvane {

namespace {

constexpr std::size_t bufferSize = 32 * 1024;

}  // namespace

std::optional<FolderEntry> DirectoryReader::next() {
    while (position_ != end_ || fill()) {
        const auto& entry = *reinterpret_cast<const dirent64*>(position_);
        position_ += entry.d_reclen;
        if (isDots(entry.d_name)) continue;
        return FolderEntry{entry.d_name, entryType(folder_.get(), entry.d_type, entry.d_name)};
    }
    return std::nullopt;
}

std::string DirectoryReader::takeRemaining() {
    std::string remaining(position_, end_);
    position_ = end_;
    while (fill()) remaining.append(position_, end_);
    position_ = end_;
    return remaining;
}

bool DirectoryReader::fill() {
    if (isExhausted_) return false;
    if (!buffer_) buffer_.reset(new char[bufferSize]);
    const auto length = ::getdents64(folder_.get(), buffer_.get(), bufferSize);
    // ENOENT is a folder that was removed while it was being read: it holds nothing any more.
    if (length < 0 && errno != ENOENT) error_ = std::error_code(errno, std::generic_category());
    isExhausted_ = length <= 0;
    if (isExhausted_) return false;
    position_ = buffer_.get();
    end_ = position_ + length;
    return true;
}

}  // namespace orvane
