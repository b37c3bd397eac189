#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Models/Date.h"
#include "Models/FileIdentity.h"
#include "Models/FileURL.h"
#include "Platform/EntryRemover.h"
#include "Platform/Result.h"
#include "Platform/Together.h"
#include "Text/FunctionRef.h"

namespace orvane {

struct DirectoryEntry {
    /// A directory URL for a real folder, a plain one for everything else (a link to a folder too).
    FileURL url;
    bool isDirectory = false;
};

struct ListingOptions {
    bool skipsHiddenFiles = false;
    /// Lists only the entries whose names it takes, all where it is absent; for the length of the call.
    std::optional<FunctionRef<bool(std::string_view name)>> takes = std::nullopt;
};

struct WalkOptions {
    bool skipsHiddenFiles = false;
    /// The contents of packages (bundles, plug-ins: folders with a package's extension).
    bool skipsPackageDescendants = false;
};

/// Space on disk of the regular files of a tree, in bytes. A file whose size is not known counts 0; one whose
/// total size is not known counts its other.
struct AllocatedSizes {
    std::int64_t fileAllocatedSize = 0;
    std::int64_t totalFileAllocatedSize = 0;
};

struct ResourceValues {
    bool isDirectory = false;
    bool isRegularFile = false;
    bool isSymbolicLink = false;
    Date contentModificationDate;
    std::optional<std::int64_t> fileAllocatedSize;
    std::optional<std::int64_t> totalFileAllocatedSize;
};

/// The file system, seen through one volume: every URL holds one of the Mac's own paths, and nothing outside
/// the volume's root is reachable by it. A URL without `fileSystemPath()` names nothing: it does not exist,
/// and operations on it fail with ENOENT. Thread-safe; calls block on the disk.
class FileManager {
  public:
    virtual ~FileManager() = default;

    virtual FileURL homeDirectoryForCurrentUser() const = 0;
    /// The per-user folder in which a program keeps its own data; need not exist yet.
    virtual FileURL applicationSupportDirectory() const = 0;

    // What cannot be told, because the process is short of descriptors or memory or the disk cannot be read,
    // counts as there: what is gone counts as removed.

    /// Whether something is there, links followed: a dangling link does not exist.
    virtual bool fileExists(const FileURL& url) const = 0;
    /// The same of many, in their order, shared among the threads that `together` brings. It is quickest
    /// where those in one folder follow each other.
    virtual std::vector<bool> filesExist(std::span<const FileURL* const> urls, Together together) const = 0;
    /// Whether an entry of that name is there, the last component not followed: a dangling link is one.
    virtual bool entryExists(const FileURL& url) const = 0;
    /// Whether the kernel would let the current user remove the entry from its folder. Contents are not
    /// looked at.
    virtual bool isDeletableFile(const FileURL& url) const = 0;
    /// Facts about the entry itself, links not followed.
    virtual Result<ResourceValues> resourceValues(const FileURL& url) const = 0;
    /// Identity of the entry itself, links not followed.
    virtual Result<FileIdentity> identity(const FileURL& url) const = 0;

    /// The direct children, in the order in which the file system keeps them.
    virtual Result<std::vector<DirectoryEntry>> contentsOfDirectory(const FileURL& url,
                                                                    ListingOptions options) const = 0;
    /// What the regular files below each of the folders occupy, in the order of the folders: links are not
    /// followed, what cannot be read counts nothing, and so does a URL that is not a real folder (a file, a
    /// link to one, nothing). All trees are shared among the threads that `together` brings, however few and
    /// large they are; the sums do not depend on that.
    virtual std::vector<AllocatedSizes> allocatedSizes(const std::vector<FileURL>& folders,
                                                       WalkOptions options, Together together) const = 0;

    /// The bytes of a regular file (links followed) of at most `limit` bytes; anything else is an error, at
    /// once: a FIFO or a device never blocks.
    virtual Result<std::string> contents(const FileURL& url, std::size_t limit) const = 0;

    /// Creates the folder with its missing parents. A folder that is there already is success.
    virtual Result<void> createDirectory(const FileURL& url) = 0;
    /// Replaces the file's contents all at once and durably: after a crash there is the old file or the new
    /// one.
    virtual Result<void> writeAtomically(std::string_view bytes, const FileURL& url) = 0;

    /// What removes entries, one after the other. The file manager outlives it.
    virtual std::unique_ptr<EntryRemover> makeEntryRemover() = 0;
};

/// The names under which an entry goes to the Trash, of which the first that is free there counts: for 1 its
/// own, "Foo.app", then "Foo 2.app", "Foo 3.app" and so on.
std::string candidateNameInTrash(const std::string& name, std::uint64_t number);

}  // namespace orvane
