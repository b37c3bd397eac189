#include "Platform/MacDisks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <limits>
#include <memory>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

#include "Platform/Linux/MountTable.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/HomeFolder.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

namespace {

/// File systems in which nobody keeps a disk. Where one of them mounts what it is asked for, it is not asked.
constexpr std::array<std::string_view, 22> withoutDisks{
    "autofs",      "binfmt_misc", "bpf",      "cgroup",   "cgroup2", "configfs",
    "debugfs",     "devpts",      "devtmpfs", "efivarfs", "fusectl", "fuse.gvfsd-fuse",
    "fuse.portal", "hugetlbfs",   "mqueue",   "nsfs",     "proc",    "pstore",
    "rpc_pipefs",  "securityfs",  "sysfs",    "tracefs"};

bool isFolder(const Volume& disk, const char* path) {
    const auto folder = openInRootWithoutLinks(disk.root(), path, O_PATH);
    struct stat status {};
    return folder && ::fstat(folder.get(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isOwn(const Volume& disk, const std::string& home) {
    const auto folder = openInRootWithoutLinks(disk.root(), home.c_str(), O_PATH);
    struct stat status {};
    return ::geteuid() == 0 ||
           (folder && ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid());
}

std::int64_t bytes(fsblkcnt_t blocks, unsigned long blockSize) {
    std::int64_t product = 0;
    const bool isTooMuch = __builtin_mul_overflow(blocks, blockSize, &product);
    return isTooMuch ? std::numeric_limits<std::int64_t>::max() : product;
}

std::optional<MacDisk> macDiskAt(const std::string& root) {
    const auto opened = Volume::open(root);
    if (!opened) return std::nullopt;
    const Volume& disk = **opened;
    if (disk.isMachineRoot() || !isFolder(disk, "/Applications") || !isFolder(disk, "/Users") ||
        (!isFolder(disk, "/System") && !isFolder(disk, "/Library"))) {
        return std::nullopt;
    }
    struct stat status {};
    struct statvfs space {};
    if (::fstat(disk.root(), &status) != 0 || ::fstatvfs(disk.root(), &space) != 0) return std::nullopt;
    MacDisk found;
    found.root = disk.realRoot();
    found.capacity = bytes(space.f_blocks, space.f_frsize);
    found.available = bytes(space.f_bavail, space.f_frsize);
    found.isReadOnly = (space.f_flag & ST_RDONLY) != 0;
    found.identity = {status.st_dev, status.st_ino};
    for (auto& home : homesOn(*opened).value_or(std::vector<std::string>())) {
        const bool own = isOwn(disk, home);
        found.homes.push_back({std::move(home), own});
    }
    return found;
}

/// What the threads that look have found. Each keeps it, for it may come back when nobody waits any more.
struct Search {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::optional<MacDisk>> found;
    std::vector<bool> hasAnswered;
    std::size_t pending = 0;

    void answer(std::size_t index, std::optional<MacDisk> disk) {
        const std::lock_guard lock(mutex);
        found[index] = std::move(disk);
        hasAnswered[index] = true;
        if (--pending == 0) changed.notify_all();
    }
};

}  // namespace

bool looksAtMacDisks() {
    return true;
}

std::vector<std::string> mountedFolders() {
    std::vector<std::string> folders;
    for (auto& mount : mountTable().value_or(std::vector<Mount>())) {
        if (mount.place == "/" || std::ranges::find(withoutDisks, mount.kind) != withoutDisks.end()) continue;
        if (std::ranges::find(folders, mount.place) == folders.end())
            folders.push_back(std::move(mount.place));
    }
    return folders;
}

MacDisks macDisksAmong(const std::vector<std::string>& folders, std::chrono::milliseconds patience) {
    const auto search = std::make_shared<Search>();
    search->found.resize(folders.size());
    search->hasAnswered.resize(folders.size());
    search->pending = folders.size();
    for (std::size_t index = 0; index < folders.size(); ++index) {
        try {
            // One for each: whoever asks a folder that does not answer is gone with it.
            std::thread([search, index, folder = folders[index]] {
                search->answer(index, macDiskAt(folder));
            }).detach();
        } catch (const std::system_error&) {
            // No more threads; the folder stays silent.
            break;
        }
    }
    std::unique_lock lock(search->mutex);
    search->changed.wait_for(lock, patience, [&] { return search->pending == 0; });

    MacDisks result;
    for (std::size_t index = 0; index < folders.size(); ++index) {
        const auto& disk = search->found[index];
        if (!search->hasAnswered[index]) result.silent.push_back(folders[index]);
        if (!disk) continue;
        const bool isKnown =
            std::ranges::find(result.disks, disk->identity, &MacDisk::identity) != result.disks.end();
        if (!isKnown) result.disks.push_back(*disk);
    }
    std::ranges::sort(result.disks, {}, &MacDisk::root);
    std::ranges::sort(result.silent);
    return result;
}

}  // namespace orvane
