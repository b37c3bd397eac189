#include "Platform/Posix/Volume.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

namespace {

/// A path without the slashes at its end, which would make the kernel follow a last link.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
}

bool namesAFile(std::string_view path) {
    return path.starts_with('/') && path.find('\0') == std::string_view::npos;
}

}  // namespace

Volume::Volume(FileDescriptor root, std::string realRoot)
    : root_(std::move(root)), realRoot_(std::move(realRoot)) {}

Result<std::shared_ptr<const Volume>> Volume::open(const std::string& rootDirectory) {
    FileDescriptor root(::open(rootDirectory.c_str(), searchFlags | O_CLOEXEC));
    if (!root) return errnoFailure();
    return open(std::move(root));
}

Result<std::shared_ptr<const Volume>> Volume::open(FileDescriptor root) {
    auto path = realPath(root.get());
    if (!path) return tl::unexpected(path.error());
    // Without the kernel's promise to stay inside there is no safe way to look at a stranger's disk.
    if (*path != "/" && !openInRoot(root.get(), "/", searchFlags, 0)) return errnoFailure();
    return std::shared_ptr<const Volume>(new Volume(std::move(root), std::move(*path)));
}

Result<FileDescriptor> Volume::openPath(std::string_view path, int flags, mode_t mode) const {
    if (!namesAFile(path)) return failure(std::errc::no_such_file_or_directory);
    const std::string plain(withoutTrailingSlashes(path));
    FileDescriptor opened;
    if (isMachineRoot()) {
        do {
            opened = FileDescriptor(::open(plain.c_str(), flags | O_CLOEXEC, mode));
        } while (!opened && errno == EINTR);
    } else {
        opened = openInRoot(root_.get(), plain.c_str(), flags, mode);
    }
    if (!opened) return errnoFailure();
    return opened;
}

Result<struct stat> Volume::status(std::string_view path, int flags) const {
    if (!namesAFile(path)) return failure(std::errc::no_such_file_or_directory);
    const std::string plain(withoutTrailingSlashes(path));
    if (!isMachineRoot()) return statusInRoot(root_.get(), plain.c_str(), flags);
    struct stat found {};
    while (::fstatat(AT_FDCWD, plain.c_str(), &found, flags) != 0) {
        if (errno != EINTR) return errnoFailure();
    }
    return found;
}

Result<void> Volume::find(std::string_view path, int flags) const {
    if (isMachineRoot()) return status(path, flags).map([](const struct stat&) {});
    const int links = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? O_NOFOLLOW : 0;
    return openPath(path, lookFlags | links).map([](const FileDescriptor&) {});
}

Result<struct stat> Volume::statusWithoutLinks(const std::string& path) const {
    if (!namesAFile(path)) return failure(std::errc::no_such_file_or_directory);
    const auto file = openInRootWithoutLinks(root_.get(), path.c_str(), lookFlags);
    if (!file) return errnoFailure();
    return statusOf(file.get());
}

std::optional<Volume::Place> Volume::place(std::string_view path) {
    if (!namesAFile(path)) return std::nullopt;
    path = withoutTrailingSlashes(path);
    const auto slash = path.rfind('/');
    const auto name = path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") return std::nullopt;
    return Place{path.substr(0, slash + 1), name};
}

Result<Volume::Entry> Volume::entry(std::string_view path) const {
    if (!namesAFile(path)) return failure(std::errc::no_such_file_or_directory);
    const auto found = place(path);
    if (!found) return failure(std::errc::invalid_argument);
    auto folder = openPath(found->folder, searchFlags);
    if (!folder) return tl::unexpected(folder.error());
    return Entry{std::move(*folder), std::string(found->name)};
}

Result<std::string> Volume::machinePath(std::string_view path) const {
    auto place = entry(path);
    if (!place) return tl::unexpected(place.error());
    auto folder = realPath(place->folder.get());
    if (!folder) return folder;
    // A folder that was moved out of the root after it was opened is none of ours.
    if (!volumePath(*folder)) return failure(std::errc::no_such_file_or_directory);
    if (!folder->ends_with('/')) *folder += '/';
    return *folder + place->name;
}

std::optional<std::string> Volume::volumePath(std::string_view machinePath) const {
    if (!machinePath.starts_with('/')) return std::nullopt;
    if (isMachineRoot()) return std::string(machinePath);
    if (!machinePath.starts_with(realRoot_)) return std::nullopt;
    machinePath.remove_prefix(realRoot_.size());
    if (machinePath.empty()) return "/";
    if (!machinePath.starts_with('/')) return std::nullopt;
    return std::string(machinePath);
}

}  // namespace orvane
