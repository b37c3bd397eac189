#include "Platform/Posix/TreeRemoval.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Posix/DirectoryStack.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/SharedWork.h"
#include "Platform/Result.h"

namespace orvane {

namespace {

/// Somebody may put things into a folder while it is being emptied; so often it is gone through.
constexpr int maximumPasses = 3;

/// Removing is work for two cores, and half as much waiting: a file system may tell the disk at once what has
/// become free with each folder, and waits for the answer. More threads wait for each other in the kernel,
/// and cost it time.
constexpr std::size_t usefulThreads = 4;

/// A folder that is being emptied. It goes with the last of those who are at work in it.
struct DoomedFolder {
    /// None above the tree.
    DoomedFolder* above = nullptr;
    std::string name;
    FileIdentity identity;
    std::optional<mode_t> modeToRestore;
    int passes = 1;
    std::atomic<bool> hasFailures = false;
    /// The thread that reads it, and every folder in it that is not finished.
    std::atomic<int> atWork = 1;

    /// Whether that was the last one: who takes it away has the folder to itself then.
    bool leavesNobody() { return --atWork == 0; }
};

/// Such a folder, open, with all below it that no other part has.
struct DoomedPart {
    DoomedFolder* folder = nullptr;
    FileDescriptor opened;
};

/// Ends a folder; gives the one above it, if nobody is at work in that one any more.
DoomedFolder* end(DoomedFolder* folder) {
    const std::unique_ptr<DoomedFolder> ended(folder);
    return folder->above && folder->above->leavesNobody() ? folder->above : nullptr;
}

/// Ends a folder to which nobody finds the way, and with it those above that nobody else is at work in.
void giveUp(DoomedFolder* folder) {
    while (folder) {
        if (folder->above) folder->above->hasFailures = true;
        folder = end(folder);
    }
}

/// Gives the owner all rights on a folder of one's own, and keeps the mode it had, if that was less.
void grantOwnerRights(int opened, DoomedFolder& folder) {
    struct stat status {};
    if (::fstat(opened, &status) != 0) return;
    folder.identity = identityOf(status);
    const mode_t mode = status.st_mode & 07777;
    if (status.st_uid != ::geteuid() || (mode & S_IRWXU) == S_IRWXU) return;
    if (changeMode(opened, mode | S_IRWXU)) folder.modeToRestore = mode;
}

void restoreMode(int opened, const DoomedFolder& folder) {
    if (folder.modeToRestore) changeMode(opened, *folder.modeToRestore);
}

/// Opens a folder with the rights to empty it; a descriptor that is none leaves its reason in errno.
FileDescriptor openForRemoval(int parent, DoomedFolder& folder) {
    const auto* const name = folder.name.c_str();
    folder.modeToRestore.reset();
    auto opened = openOnSameMount(parent, name, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    if (opened) grantOwnerRights(opened.get(), folder);
    if (opened || errno != EACCES) return opened;
    const auto unreadable = openOnSameMount(parent, name, searchFlags);
    if (!unreadable) return opened;
    grantOwnerRights(unreadable.get(), folder);
    opened = FileDescriptor(
        ::openat(unreadable.get(), ".", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened) {
        const int reason = errno;
        restoreMode(unreadable.get(), folder);
        errno = reason;
    }
    return opened;
}

bool isFolder(int parent, const char* name) {
    const auto status = statusOf(parent, name);
    return status && S_ISDIR(status->st_mode);
}

/// What the threads share.
class TreeRemoval {
  public:
    /// `parent` is the folder in which the tree lies.
    explicit TreeRemoval(int parent) : parent_(parent) {}

    void run(const char* name, Together together);

    int parent() const { return parent_; }
    SharedWork<DoomedPart>& parts() { return parts_; }
    void note(const std::error_code& error);

    // Once it has run.
    std::error_code firstError() const { return firstError_; }
    bool wasShortOfDescriptors() const { return wasShortOfDescriptors_; }

  private:
    const int parent_;
    SharedWork<DoomedPart> parts_;
    std::mutex mutex_;
    std::error_code firstError_;
    bool wasShortOfDescriptors_ = false;
};

/// One thread's way through the parts that it takes.
class PartRemoval {
  public:
    explicit PartRemoval(TreeRemoval& tree) : tree_(tree) {}

    void run(DoomedPart part);
    /// Opens a folder in another one, or the top of the tree. What is no folder any more, or does not open,
    /// is removed if it can be, and is no part.
    std::optional<DoomedPart> open(DoomedFolder* above, std::string name);

  private:
    void descend(DoomedPart part);
    void removeEntry(const FolderEntry& entry);
    void removeFolder(std::string name);
    void leaveFolder();
    void finish(DoomedPart part);
    std::error_code removeEmptied(const DoomedPart& part, FileDescriptor& above) const;
    void goThroughAgain(DoomedPart part);
    void loseWayBack(const std::error_code& reason);
    void fail(DoomedFolder* folder, const std::error_code& error);

    TreeRemoval& tree_;
    DirectoryStack stack_;
    /// The folders at the stack's two ends.
    DoomedFolder* first_ = nullptr;
    DoomedFolder* here_ = nullptr;
};

void PartRemoval::run(DoomedPart part) {
    descend(std::move(part));
    while (!stack_.isEmpty()) {
        if (const auto entry = stack_.next()) {
            removeEntry(*entry);
        } else {
            leaveFolder();
        }
    }
}

void PartRemoval::descend(DoomedPart part) {
    if (stack_.isEmpty()) first_ = part.folder;
    here_ = part.folder;
    stack_.enter(here_->name, std::move(part.opened));
}

void PartRemoval::removeEntry(const FolderEntry& entry) {
    if (entry.type == EntryType::folder) return removeFolder(std::string(entry.name));
    if (::unlinkat(stack_.folder(), entry.name.data(), 0) == 0 || errno == ENOENT) return;
    // What has become a folder since is left to the next pass. Some systems say EPERM of one.
    const auto error = currentError();
    if (errno == EISDIR || (errno == EPERM && isFolder(stack_.folder(), entry.name.data()))) return;
    fail(here_, error);
}

void PartRemoval::removeFolder(std::string name) {
    auto part = open(here_, std::move(name));
    if (!part) return;
    ++here_->atWork;
    if (!tree_.parts().leave(*part)) descend(std::move(*part));
}

std::optional<DoomedPart> PartRemoval::open(DoomedFolder* above, std::string name) {
    const int parent = above ? stack_.folder() : tree_.parent();
    auto folder = std::make_unique<DoomedFolder>();
    folder->above = above;
    folder->name = std::move(name);
    auto opened = stack_.open([&] { return openForRemoval(parent, *folder); });
    if (opened) return DoomedPart{folder.release(), std::move(*opened)};
    // An empty folder can be removed by a user who may not read it; and what was a folder may be a file by
    // now.
    const auto reason = opened.error();
    const bool isFolder = reason.value() != ENOTDIR && reason.value() != ELOOP;
    if (reason.value() == ENOENT) return std::nullopt;
    if (::unlinkat(parent, folder->name.c_str(), isFolder ? AT_REMOVEDIR : 0) != 0 && errno != ENOENT) {
        fail(above, isFolder ? reason : currentError());
    }
    return std::nullopt;
}

/// Goes back up from a folder that has been read. While others are at work in it, it stays for the last of
/// them.
void PartRemoval::leaveFolder() {
    if (stack_.error()) fail(here_, stack_.error());
    auto emptied = stack_.leave();
    if (!emptied) return loseWayBack(emptied.error());
    auto* const left = std::exchange(here_, here_->above);
    if (left->leavesNobody()) finish({left, std::move(*emptied)});
}

/// Removes a folder that nobody is at work in any more, and each one above it of which that is true then.
void PartRemoval::finish(DoomedPart part) {
    while (part.folder) {
        auto& folder = *part.folder;
        FileDescriptor above;
        const auto error = removeEmptied(part, above);
        const bool isNotEmpty = error.value() == ENOTEMPTY || error.value() == EEXIST;
        if (isNotEmpty && !folder.hasFailures && folder.passes < maximumPasses) {
            return goThroughAgain(std::move(part));
        }
        if (error) {
            restoreMode(part.opened.get(), folder);
            fail(folder.above, error);
        }
        part = {end(part.folder), std::move(above)};
        if (part.folder && !part.opened) return giveUp(part.folder);
    }
}

/// Removes an emptied folder from the one above it, which is at hand, or is found again and put into `above`.
std::error_code PartRemoval::removeEmptied(const DoomedPart& part, FileDescriptor& above) const {
    const auto& folder = *part.folder;
    int place = stack_.isEmpty() ? tree_.parent() : stack_.folder();
    if (stack_.isEmpty() && folder.above) {
        auto found = openAbove(part.opened.get(), folder.above->identity);
        if (!found) return found.error();
        above = std::move(*found);
        place = above.get();
    }
    if (::unlinkat(place, folder.name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT) return {};
    return currentError();
}

void PartRemoval::goThroughAgain(DoomedPart part) {
    ++part.folder->passes;
    part.folder->atWork = 1;
    ::lseek(part.opened.get(), 0, SEEK_SET);
    descend(std::move(part));
}

/// Nothing on the stack can be gone on with.
void PartRemoval::loseWayBack(const std::error_code& reason) {
    fail(here_->above, reason);
    for (bool isFirst = false; !isFirst;) {
        isFirst = here_ == first_;
        auto* const lost = std::exchange(here_, here_->above);
        if (lost->leavesNobody()) giveUp(lost);
    }
}

void PartRemoval::fail(DoomedFolder* folder, const std::error_code& error) {
    tree_.note(error);
    if (folder) folder->hasFailures = true;
}

void TreeRemoval::run(const char* name, Together together) {
    auto top = PartRemoval(*this).open(nullptr, name);
    if (!top) return;
    parts_.add(std::move(*top));
    std::atomic<std::size_t> threads = 0;
    together([&] {
        if (threads++ >= usefulThreads) return;
        PartRemoval own(*this);
        parts_.takePart([&](DoomedPart part) { own.run(std::move(part)); });
    });
}

void TreeRemoval::note(const std::error_code& error) {
    const std::lock_guard lock(mutex_);
    if (!firstError_) firstError_ = error;
    if (isShortOfDescriptors(error)) wasShortOfDescriptors_ = true;
}

}  // namespace

std::error_code removeTree(int parent, const char* name, Together together) {
    TreeRemoval shared(parent);
    shared.run(name, together);
    if (!shared.wasShortOfDescriptors()) return shared.firstError();
    TreeRemoval rest(parent);
    rest.run(name, alone);
    return rest.firstError();
}

}  // namespace orvane
