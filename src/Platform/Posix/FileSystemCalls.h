#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"

namespace orvane {

// The calls that POSIX lacks and that every kernel spells its own way. An empty descriptor, or false, leaves
// its reason in errno. Safe to call from any thread.

/// Flags of open(2) for a folder in which entries are found by their names. It is not listed by them, and
/// need not be readable.
extern const int searchFlags;

/// Flags of open(2) for a file that is looked at before it is read: nothing happens to it, and a FIFO does
/// not block.
extern const int lookFlags;

/// Opens a path as if `root` were the root of the file system: no link, absolute or with dot-dot, and no link
/// of the kernel's own leads out of it. ENOSYS where the kernel cannot promise that.
FileDescriptor openInRoot(int root, const char* path, int flags, mode_t mode);

/// The facts about what a path names in that same way; about a last link itself for AT_SYMLINK_NOFOLLOW.
Result<struct stat> statusInRoot(int root, const char* path, int flags);

/// The same without following a link anywhere: ELOOP where there is one.
FileDescriptor openInRootWithoutLinks(int root, const char* path, int flags);

/// Opens an entry of a folder, or one further down in it, following no link. EXDEV when something is
/// mounted on the way or on it.
FileDescriptor openOnSameMount(int folder, const char* name, int flags);

/// Opens the file that a descriptor of `lookFlags` stands for, for reading: the same one, whatever has its
/// name by now.
FileDescriptor openForReading(int descriptor);

/// The name by which the rest of the machine knows an open folder. ENOENT when it has none any more.
Result<std::string> realPath(int folder);

/// Moves an entry to a name that is free; EEXIST when it is not.
bool renameExclusively(int fromFolder, const char* from, int toFolder, const char* to);

/// Sets the mode of what a descriptor stands for, one opened with `searchFlags` too.
bool changeMode(int descriptor, mode_t mode);

/// Returns when everything written so far lies on the disk itself. EINVAL where the file system cannot do
/// that for a folder.
bool flushToDisk(int descriptor);

/// When the contents were changed last, to the nanosecond.
timespec modificationTime(const struct stat& status);

/// What stands in the way of removing an entry besides permissions.
struct EntryAttributes {
    bool isImmutable = false;
    bool isAppendOnly = false;
    bool isMountPoint = false;
};

/// The attributes of an entry of a folder, links not followed; of the folder itself for an empty name.
Result<EntryAttributes> entryAttributes(int folder, const char* name);

/// Whether anything is mounted on an open folder or somewhere below it.
Result<bool> holdsMounts(int folder);

}  // namespace orvane
