#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "Platform/Posix/FileDescriptor.h"

namespace orvane {

enum class EntryType { folder, regularFile, link, other };

struct FolderEntry {
    /// Ends in a NUL, so that `name.data()` can be given to the kernel; valid until the reader is used again.
    std::string_view name;
    EntryType type = EntryType::other;
};

/// Reads the entries of one open folder after the other, "." and ".." left out, in the order in which the
/// file system keeps them. For one thread at a time.
class DirectoryReader {
  public:
    /// Starts with the first entry of a folder that is open for reading.
    void read(FileDescriptor folder);
    /// Goes on with what `takeRemaining` took from a reader of the same folder.
    void resume(FileDescriptor folder, std::string remaining);

    int folder() const { return folder_.get(); }
    /// The next entry; absent at the end, and where the folder cannot be read further: then `error` is set.
    std::optional<FolderEntry> next();
    std::error_code error() const { return error_; }

    /// Everything that `next` has not given yet, in a form of its own.
    std::string takeRemaining();
    FileDescriptor release() { return std::move(folder_); }

  private:
    /// Reads on; false at the end. It and the two above are every system's own.
    bool fill();
    /// The type that a folder says its entry has, as one of the numbers of <dirent.h>.
    static EntryType entryType(int folder, unsigned char number, const char* name);
    static bool isDots(const char* name) {
        return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
    }

    FileDescriptor folder_;
    /// Where the kernel puts what it reads, where it can.
    std::unique_ptr<char[]> buffer_;
    /// What was read before, in the form of `takeRemaining`.
    std::string entries_;
    const char* position_ = nullptr;
    const char* end_ = nullptr;
    bool isExhausted_ = true;
    std::error_code error_;
};

}  // namespace orvane
