#include "Platform/Posix/TreeRemoval.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Posix/DirectoryStack.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Result.h"

namespace orvane {

namespace {

/// Somebody may put things into a folder while it is being emptied; so often it is gone through.
constexpr int maximumPasses = 3;

/// Gives the owner all rights on a folder of one's own. The mode it had, if that was less.
std::optional<mode_t> grantOwnerRights(int folder) {
    struct stat status {};
    if (::fstat(folder, &status) != 0 || status.st_uid != ::geteuid()) return std::nullopt;
    const mode_t mode = status.st_mode & 07777;
    if ((mode & S_IRWXU) == S_IRWXU || !changeMode(folder, mode | S_IRWXU)) return std::nullopt;
    return mode;
}

struct OpenedFolder {
    FileDescriptor descriptor;
    std::optional<mode_t> modeToRestore;
};

/// Opens a folder with the rights to empty it; a descriptor that is none leaves its reason in errno.
OpenedFolder openForRemoval(int parent, const char* name) {
    OpenedFolder folder{openOnSameMount(parent, name, O_RDONLY | O_DIRECTORY | O_NONBLOCK), std::nullopt};
    if (folder.descriptor) {
        folder.modeToRestore = grantOwnerRights(folder.descriptor.get());
        return folder;
    }
    if (errno != EACCES) return folder;
    const auto unreadable = openOnSameMount(parent, name, searchFlags);
    if (!unreadable) return folder;
    folder.modeToRestore = grantOwnerRights(unreadable.get());
    folder.descriptor = FileDescriptor(
        ::openat(unreadable.get(), ".", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!folder.descriptor && folder.modeToRestore) {
        const int reason = errno;
        changeMode(unreadable.get(), *folder.modeToRestore);
        errno = reason;
    }
    return folder;
}

bool isFolder(int parent, const char* name) {
    const auto status = statusOf(parent, name);
    return status && S_ISDIR(status->st_mode);
}

class TreeRemoval {
  public:
    explicit TreeRemoval(int parent) : parent_(parent) {}

    std::error_code run(const char* name);

  private:
    /// A folder that is being emptied.
    struct Level {
        std::string name;
        std::optional<mode_t> modeToRestore;
        int passes = 1;
        bool hasFailures = false;
    };

    int folder() const { return stack_.isEmpty() ? parent_ : stack_.folder(); }
    void removeEntry(const FolderEntry& entry);
    void enterFolder(std::string name);
    void removeEmptiedFolder();
    void fail(std::error_code error);

    int parent_;
    DirectoryStack stack_;
    std::vector<Level> levels_;
    std::error_code firstError_;
};

std::error_code TreeRemoval::run(const char* name) {
    enterFolder(name);
    while (!stack_.isEmpty()) {
        if (const auto entry = stack_.next()) {
            removeEntry(*entry);
        } else {
            if (stack_.error()) fail(stack_.error());
            removeEmptiedFolder();
        }
    }
    return firstError_;
}

void TreeRemoval::removeEntry(const FolderEntry& entry) {
    if (entry.type == EntryType::folder) return enterFolder(std::string(entry.name));
    if (::unlinkat(folder(), entry.name.data(), 0) == 0 || errno == ENOENT) return;
    // What has become a folder since is left to the next pass. Some systems say EPERM of one.
    const auto error = currentError();
    if (errno == EISDIR || (errno == EPERM && isFolder(folder(), entry.name.data()))) return;
    fail(error);
}

void TreeRemoval::enterFolder(std::string name) {
    Level level{.name = std::move(name), .modeToRestore = std::nullopt};
    const auto error = stack_.enter(level.name, [&] {
        auto opened = openForRemoval(folder(), level.name.c_str());
        level.modeToRestore = opened.modeToRestore;
        return std::move(opened.descriptor);
    });
    if (!error) {
        levels_.push_back(std::move(level));
        return;
    }
    // An empty folder can be removed by a user who may not read it; and what was a folder may be a file by
    // now.
    const bool isFolder = error.value() != ENOTDIR && error.value() != ELOOP;
    if (error.value() == ENOENT) return;
    if (::unlinkat(folder(), level.name.c_str(), isFolder ? AT_REMOVEDIR : 0) == 0 || errno == ENOENT) return;
    fail(isFolder ? error : currentError());
}

void TreeRemoval::removeEmptiedFolder() {
    auto level = std::move(levels_.back());
    levels_.pop_back();
    auto emptied = stack_.leave();
    if (!emptied) return fail(emptied.error());
    if (::unlinkat(folder(), level.name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT) return;
    const auto error = currentError();
    const auto rewound = [&] {
        ::lseek(emptied->get(), 0, SEEK_SET);
        return std::move(*emptied);
    };
    const bool isNotEmpty = error.value() == ENOTEMPTY || error.value() == EEXIST;
    if (isNotEmpty && !level.hasFailures && level.passes < maximumPasses &&
        !stack_.enter(level.name, rewound)) {
        ++level.passes;
        levels_.push_back(std::move(level));
        return;
    }
    if (level.modeToRestore) changeMode(emptied->get(), *level.modeToRestore);
    fail(error);
}

void TreeRemoval::fail(std::error_code error) {
    if (!firstError_) firstError_ = error;
    if (!levels_.empty()) levels_.back().hasFailures = true;
}

}  // namespace

std::error_code removeTree(int parent, const char* name) {
    return TreeRemoval(parent).run(name);
}

}  // namespace orvane
