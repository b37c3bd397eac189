#include "Platform/Posix/DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>

namespace orvane {

namespace {

// What has been read is kept as a list of the type, a letter, and the name, which ends in a NUL.

char letterOf(EntryType type) {
    return static_cast<char>('a' + static_cast<int>(type));
}

EntryType typeOf(char letter) {
    return static_cast<EntryType>(letter - 'a');
}

struct StreamCloser {
    void operator()(DIR* stream) const { ::closedir(stream); }
};
using Stream = std::unique_ptr<DIR, StreamCloser>;

/// A stream of its own over an open folder, from its first entry on.
Stream streamOver(int folder) {
    FileDescriptor copy(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
    if (!copy) return nullptr;
    Stream stream(::fdopendir(copy.get()));
    if (stream) static_cast<void>(copy.release());
    if (stream) ::rewinddir(stream.get());
    return stream;
}

}  // namespace

std::optional<FolderEntry> DirectoryReader::next() {
    if (position_ == end_ && !fill()) return std::nullopt;
    const FolderEntry entry{position_ + 1, typeOf(*position_)};
    position_ += entry.name.size() + 2;
    return entry;
}

std::string DirectoryReader::takeRemaining() {
    if (position_ == end_) fill();
    std::string remaining(position_, end_);
    position_ = end_;
    return remaining;
}

/// All of the folder at once: on some of the Mac's disks, what is removed between two reads makes others be
/// left out.
bool DirectoryReader::fill() {
    if (isExhausted_) return false;
    isExhausted_ = true;
    entries_.clear();
    const auto stream = streamOver(folder_.get());
    if (!stream) error_ = std::error_code(errno, std::generic_category());
    while (stream) {
        errno = 0;
        const dirent* const entry = ::readdir(stream.get());
        if (entry == nullptr) {
            // ENOENT is a folder that was removed while it was being read: it holds nothing any more.
            if (errno != 0 && errno != ENOENT) error_ = std::error_code(errno, std::generic_category());
            break;
        }
        if (isDots(entry->d_name)) continue;
        entries_ += letterOf(entryType(folder_.get(), entry->d_type, entry->d_name));
        entries_.append(entry->d_name).push_back('\0');
    }
    position_ = entries_.data();
    end_ = position_ + entries_.size();
    return position_ != end_;
}

}  // namespace orvane
