#include "Platform/Posix/DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace orvane {

namespace {

constexpr std::size_t bufferSize = 32 * 1024;

bool isDots(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

/// Some file systems do not say in the folder what an entry is.
EntryType typeOfEntry(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return EntryType::other;
    if (S_ISDIR(status.st_mode)) return EntryType::folder;
    if (S_ISREG(status.st_mode)) return EntryType::regularFile;
    return S_ISLNK(status.st_mode) ? EntryType::link : EntryType::other;
}

EntryType entryType(int folder, const dirent64& entry) {
    switch (entry.d_type) {
        case DT_DIR:
            return EntryType::folder;
        case DT_REG:
            return EntryType::regularFile;
        case DT_LNK:
            return EntryType::link;
        case DT_UNKNOWN:
            return typeOfEntry(folder, entry.d_name);
        default:
            return EntryType::other;
    }
}

}  // namespace

void DirectoryReader::read(FileDescriptor folder) {
    folder_ = std::move(folder);
    position_ = end_ = nullptr;
    isExhausted_ = false;
    error_.clear();
}

void DirectoryReader::resume(FileDescriptor folder, std::string remaining) {
    folder_ = std::move(folder);
    entries_ = std::move(remaining);
    position_ = entries_.data();
    end_ = position_ + entries_.size();
    isExhausted_ = true;
    error_.clear();
}

std::optional<FolderEntry> DirectoryReader::next() {
    while (position_ != end_ || fill()) {
        const auto& entry = *reinterpret_cast<const dirent64*>(position_);
        position_ += entry.d_reclen;
        if (!isDots(entry.d_name)) return FolderEntry{entry.d_name, entryType(folder_.get(), entry)};
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
