#include "Platform/Posix/PosixFileManager.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

#include "Platform/Posix/AtomicFile.h"
#include "Platform/Posix/DirectoryReader.h"
#include "Platform/Posix/FileFinder.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Ownership.h"
#include "Platform/Posix/PosixEntryRemover.h"
#include "Platform/Posix/TreeSizes.h"
#include "Platform/Posix/TreeWalk.h"

namespace orvane {

namespace {

class PosixFileManager final : public FileManager {
  public:
    PosixFileManager(std::shared_ptr<const Volume> volume, std::string home, std::string applicationSupport)
        : volume_(std::move(volume)),
          home_(std::move(home)),
          applicationSupport_(std::move(applicationSupport)) {}

    FileURL homeDirectoryForCurrentUser() const override { return FileURL::fromPath(home_, true); }
    FileURL applicationSupportDirectory() const override {
        return FileURL::fromPath(applicationSupport_, true);
    }

    bool fileExists(const FileURL& url) const override;
    std::vector<bool> filesExist(std::span<const FileURL* const> urls, Together together) const override;
    bool entryExists(const FileURL& url) const override;
    bool isDeletableFile(const FileURL& url) const override;
    Result<ResourceValues> resourceValues(const FileURL& url) const override;
    Result<FileIdentity> identity(const FileURL& url) const override;

    Result<std::vector<DirectoryEntry>> contentsOfDirectory(const FileURL& url,
                                                            ListingOptions options) const override;
    std::vector<AllocatedSizes> allocatedSizes(const std::vector<FileURL>& folders, WalkOptions options,
                                               Together together) const override;
    Result<std::string> contents(const FileURL& url, std::size_t limit) const override;

    Result<void> createDirectory(const FileURL& url) override;
    Result<void> writeAtomically(std::string_view bytes, const FileURL& url) override;
    std::unique_ptr<EntryRemover> makeEntryRemover() override {
        return orvane::makeEntryRemover(volume_, home_);
    }

  private:
    Result<FileDescriptor> open(const FileURL& url, int flags) const;
    Result<FileDescriptor> openForWalk(const FileURL& url) const;
    Result<Volume::Entry> entry(const FileURL& url) const;
    Result<struct stat> status(const FileURL& url) const;
    bool isThere(const FileURL& url, int flags) const;
    Result<void> makeFolder(std::string_view path);

    const std::shared_ptr<const Volume> volume_;
    const std::string home_;
    const std::string applicationSupport_;
};

/// Whether the kernel would let the effective user remove the entry from its folder, whatever it holds:
/// rights on the folder, ownership in a sticky one, a file system that can be written, an entry that is
/// neither locked nor mounted on. False for an entry that is not there.
bool isDeletable(const Volume::Entry& entry) {
    const int folder = entry.folder.get();
    struct stat folderStatus {};
    struct stat status {};
    if (::fstat(folder, &folderStatus) != 0 ||
        ::fstatat(folder, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    // Knows access control lists, locked folders and read-only file systems as well.
    if (::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return false;
    const auto user = ::geteuid();
    const bool isSticky = (folderStatus.st_mode & S_ISVTX) != 0;
    if (isSticky && user != 0 && user != status.st_uid && user != folderStatus.st_uid) return false;
    const auto folderAttributes = entryAttributes(folder, "");
    const auto attributes = entryAttributes(folder, entry.name.c_str());
    return folderAttributes && attributes && !folderAttributes->isAppendOnly && !attributes->isImmutable &&
           !attributes->isAppendOnly && !attributes->isMountPoint;
}

/// The bytes of the regular file that a descriptor opened to look at it stands for. EFBIG when there are more
/// than `limit`, EINVAL for what is no regular file: nothing is read of a device or a FIFO.
Result<std::string> fileContents(int file, std::size_t limit) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errnoFailure();
    if (!S_ISREG(status.st_mode)) return failure(std::errc::invalid_argument);
    if (static_cast<std::uintmax_t>(status.st_size) > limit) return failure(std::errc::file_too_large);
    const auto opened = openForReading(file);
    if (!opened) return errnoFailure();

    // One byte more than expected tells a file that has grown, or one that does not know its size.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (true) {
        const auto count = ::read(opened.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errnoFailure();
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length > limit) return failure(std::errc::file_too_large);
        if (length == bytes.size()) bytes.resize(std::max<std::size_t>(2 * length, 4096));
    }
    bytes.resize(length);
    return bytes;
}

tl::unexpected<std::error_code> noSuchFile() {
    return failure(std::errc::no_such_file_or_directory);
}

Result<FileDescriptor> PosixFileManager::open(const FileURL& url, int flags) const {
    const auto path = url.fileSystemPath();
    if (!path) return noSuchFile();
    return volume_->openPath(*path, flags);
}

/// A folder itself, not what a link leads to.
Result<FileDescriptor> PosixFileManager::openForWalk(const FileURL& url) const {
    return open(url, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK);
}

Result<Volume::Entry> PosixFileManager::entry(const FileURL& url) const {
    const auto path = url.fileSystemPath();
    if (!path) return noSuchFile();
    return volume_->entry(*path);
}

Result<struct stat> PosixFileManager::status(const FileURL& url) const {
    const auto path = url.fileSystemPath();
    if (!path) return noSuchFile();
    return volume_->status(*path, AT_SYMLINK_NOFOLLOW);
}

/// Who cannot look must not take a file for gone: what is gone counts as removed.
bool isThere(const Result<void>& found) {
    return found || cannotTell(found.error());
}

bool PosixFileManager::isThere(const FileURL& url, int flags) const {
    const auto path = url.fileSystemPath();
    return path && orvane::isThere(volume_->find(*path, flags));
}

bool PosixFileManager::fileExists(const FileURL& url) const {
    return isThere(url, 0);
}

std::vector<bool> PosixFileManager::filesExist(std::span<const FileURL* const> urls,
                                               Together together) const {
    // Neighbours stay with one thread, for they often lie in one folder; of a few each has its own, for all
    // of them may wait for the disk.
    const auto atOnce = std::clamp<std::size_t>(urls.size() / 64, 1, 128);
    // Two threads cannot write bits of one number.
    std::vector<char> areThere(urls.size());
    std::atomic<std::size_t> next = 0;
    together([&] {
        FileFinder finder(*volume_);
        for (auto first = next.fetch_add(atOnce); first < urls.size(); first = next.fetch_add(atOnce)) {
            const auto end = std::min(first + atOnce, urls.size());
            for (auto index = first; index < end; ++index) {
                const auto path = urls[index]->fileSystemPath();
                areThere[index] = path && orvane::isThere(finder.find(*path)) ? 1 : 0;
            }
        }
    });
    return {areThere.begin(), areThere.end()};
}

bool PosixFileManager::entryExists(const FileURL& url) const {
    return isThere(url, AT_SYMLINK_NOFOLLOW);
}

bool PosixFileManager::isDeletableFile(const FileURL& url) const {
    const auto place = entry(url);
    return place && isDeletable(*place);
}

Result<ResourceValues> PosixFileManager::resourceValues(const FileURL& url) const {
    const auto found = status(url);
    if (!found) return tl::unexpected(found.error());
    ResourceValues values;
    values.isDirectory = S_ISDIR(found->st_mode);
    values.isRegularFile = S_ISREG(found->st_mode);
    values.isSymbolicLink = S_ISLNK(found->st_mode);
    // The fraction is added last: seconds since 2001 leave it more digits than seconds since 1970.
    const auto modified = modificationTime(*found);
    values.contentModificationDate = Date::fromUnixTime(static_cast<double>(modified.tv_sec));
    values.contentModificationDate.timeIntervalSinceReferenceDate +=
        static_cast<double>(modified.tv_nsec) * 1e-9;
    if (values.isRegularFile) values.fileAllocatedSize = allocatedSize(found->st_blocks);
    values.totalFileAllocatedSize = values.fileAllocatedSize;
    return values;
}

Result<FileIdentity> PosixFileManager::identity(const FileURL& url) const {
    return status(url).map([](const struct stat& found) { return identityOf(found); });
}

Result<std::vector<DirectoryEntry>> PosixFileManager::contentsOfDirectory(const FileURL& url,
                                                                          ListingOptions options) const {
    auto folder = open(url, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    if (!folder) return tl::unexpected(folder.error());
    DirectoryReader reader;
    reader.read(std::move(*folder));
    std::vector<DirectoryEntry> entries;
    while (const auto entry = reader.next()) {
        if (options.skipsHiddenFiles && entry->name.starts_with('.')) continue;
        if (options.takes && !(*options.takes)(entry->name)) continue;
        const bool isDirectory = entry->type == EntryType::folder;
        entries.push_back({url.appendingPathComponent(entry->name, isDirectory), isDirectory});
    }
    if (reader.error()) return tl::unexpected(reader.error());
    return entries;
}

std::vector<AllocatedSizes> PosixFileManager::allocatedSizes(const std::vector<FileURL>& folders,
                                                             WalkOptions options, Together together) const {
    return sizesOfTrees(
        folders.size(), [&](std::size_t index) { return openForWalk(folders[index]); }, options, together);
}

Result<std::string> PosixFileManager::contents(const FileURL& url, std::size_t limit) const {
    const auto file = open(url, lookFlags);
    if (!file) return tl::unexpected(file.error());
    return fileContents(file->get(), limit);
}

/// One folder of a path; its parents are there. One that is there already is success.
Result<void> PosixFileManager::makeFolder(std::string_view path) {
    if (volume_->openPath(path, searchFlags)) return {};
    const auto place = volume_->entry(path);
    if (!place) return tl::unexpected(place.error());
    constexpr mode_t allThatTheUserAllows = 0777;
    auto made = orvane::makeFolder(place->folder.get(), place->name.c_str(), allThatTheUserAllows);
    if (made || made.error() != std::errc::file_exists) return made;
    // Made by somebody else in the meantime, or not a folder.
    return volume_->openPath(path, searchFlags).map([](const FileDescriptor&) {});
}

Result<void> PosixFileManager::createDirectory(const FileURL& url) {
    const auto path = url.fileSystemPath();
    if (!path) return noSuchFile();
    for (auto slash = path->find('/', 1); slash != std::string_view::npos;
         slash = path->find('/', slash + 1)) {
        if (auto made = makeFolder(path->substr(0, slash)); !made) return made;
    }
    return makeFolder(*path);
}

Result<void> PosixFileManager::writeAtomically(std::string_view bytes, const FileURL& url) {
    const auto place = entry(url);
    if (!place) return tl::unexpected(place.error());
    return replaceFile(*place, bytes);
}

}  // namespace

std::unique_ptr<FileManager> makeFileManager(std::shared_ptr<const Volume> volume, std::string home,
                                             std::string applicationSupport) {
    return std::make_unique<PosixFileManager>(std::move(volume), std::move(home),
                                              std::move(applicationSupport));
}

}  // namespace orvane
