#include "Platform/Posix/AtomicFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Posix/DirectoryReader.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Ownership.h"
#include "Platform/Posix/TemporaryName.h"

namespace orvane {

namespace {

constexpr std::string_view temporaryPrefix = ".orvane-save-";

/// A file of one's own that is gone again unless it was moved into its place. Locked as long as it is being
/// written, which tells it from what a crash has left behind.
class TemporaryFile {
  public:
    static Result<TemporaryFile> create(int folder);
    TemporaryFile(TemporaryFile&&) = default;
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    ~TemporaryFile() {
        if (descriptor_) ::unlinkat(folder_, name_.c_str(), 0);
    }

    int descriptor() const { return descriptor_.get(); }
    Result<void> moveTo(const std::string& name) {
        if (::renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) return errnoFailure();
        descriptor_ = FileDescriptor();
        return {};
    }

  private:
    TemporaryFile(int folder, std::string name, FileDescriptor descriptor)
        : folder_(folder), name_(std::move(name)), descriptor_(std::move(descriptor)) {}

    int folder_;
    std::string name_;
    FileDescriptor descriptor_;
};

Result<TemporaryFile> TemporaryFile::create(int folder) {
    while (true) {
        auto name = temporaryName(temporaryPrefix);
        FileDescriptor file(
            ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!file && errno == EEXIST) continue;
        if (!file) return errnoFailure();
        // Between its creation and its lock the file looks left behind; another save may have taken it away.
        struct stat status {};
        const bool isTaken = ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!isTaken && ::fstat(file.get(), &status) == 0 && status.st_nlink > 0) {
            return TemporaryFile(folder, std::move(name), std::move(file));
        }
    }
}

/// Removes the user's temporary files that nobody is writing any more. The administrator's are given to the
/// owner of the folder as soon as they are made, so what he left behind may be that owner's.
void sweepTemporaryFiles(int folder) {
    struct stat folderStatus {};
    if (::fstat(folder, &folderStatus) != 0) return;
    const auto user = ::geteuid();
    DirectoryReader reader;
    reader.read(FileDescriptor(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    while (const auto entry = reader.next()) {
        if (entry->type != EntryType::regularFile || !isTemporaryName(entry->name, temporaryPrefix)) continue;
        const FileDescriptor file(
            ::openat(folder, entry->name.data(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        if (!file || ::fstat(file.get(), &status) != 0) continue;
        const bool isOwn = status.st_uid == user || (user == 0 && status.st_uid == folderStatus.st_uid);
        if (isOwn && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlinkat(folder, entry->name.data(), 0);
    }
}

/// The file that is replaced, if it is one; what is in the place of a file is of no interest.
std::optional<struct stat> replacedFile(const Volume::Entry& place) {
    struct stat status {};
    const bool isFile =
        ::fstatat(place.folder.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(status.st_mode);
    return isFile ? std::optional(status) : std::nullopt;
}

/// Gives the administrator's file to whom the old one belongs, a new one to the owner of the folder.
Result<void> adoptOwner(int folder, const std::optional<struct stat>& replaced, int file) {
    if (!replaced) return giveToOwnerOf(folder, file);
    if (::geteuid() == 0 && ::fchown(file, replaced->st_uid, replaced->st_gid) != 0) return errnoFailure();
    return {};
}

/// Last of all: until then the file can be opened by whoever clears it away.
void adoptMode(const std::optional<struct stat>& replaced, int file) {
    if (replaced) ::fchmod(file, replaced->st_mode & 0777);
}

Result<void> writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errnoFailure();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

Result<void> flush(int descriptor) {
    while (!flushToDisk(descriptor)) {
        if (errno != EINTR) return errnoFailure();
    }
    return {};
}

/// A file system that cannot flush a folder says EINVAL, and has done all it can.
Result<void> flushFolder(int folder) {
    auto flushed = flush(folder);
    if (!flushed && flushed.error() == std::errc::invalid_argument) return {};
    return flushed;
}

}  // namespace

Result<void> replaceFile(const Volume::Entry& place, std::string_view bytes) {
    const FileDescriptor folder(::openat(place.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return errnoFailure();
    sweepTemporaryFiles(folder.get());
    auto temporary = TemporaryFile::create(folder.get());
    if (!temporary) return tl::unexpected(temporary.error());
    const int file = temporary->descriptor();
    const auto replaced = replacedFile(place);
    return adoptOwner(folder.get(), replaced, file)
        .and_then([&] { return writeAll(file, bytes); })
        .map([&] { adoptMode(replaced, file); })
        .and_then([&] { return flush(file); })
        .and_then([&] { return temporary->moveTo(place.name); })
        // The new name, too, has to reach the disk.
        .and_then([&] { return flushFolder(folder.get()); });
}

}  // namespace orvane
