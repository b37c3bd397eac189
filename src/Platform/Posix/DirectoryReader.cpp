#include "Platform/Posix/DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

namespace orvane {

namespace {

/// Some file systems do not say in the folder what an entry is.
EntryType typeOfEntry(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return EntryType::other;
    if (S_ISDIR(status.st_mode)) return EntryType::folder;
    if (S_ISREG(status.st_mode)) return EntryType::regularFile;
    return S_ISLNK(status.st_mode) ? EntryType::link : EntryType::other;
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

EntryType DirectoryReader::entryType(int folder, unsigned char number, const char* name) {
    switch (number) {
        case DT_DIR:
            return EntryType::folder;
        case DT_REG:
            return EntryType::regularFile;
        case DT_LNK:
            return EntryType::link;
        case DT_UNKNOWN:
            return typeOfEntry(folder, name);
        default:
            return EntryType::other;
    }
}

}  // namespace orvane
