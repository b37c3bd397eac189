#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"

namespace orvane {

/// The one class that knows the root. It turns the Mac's own absolute paths into open descriptors, resolving
/// every link inside the root, so that nothing outside it is reachable. Immutable and thread-safe.
class Volume {
  public:
    /// Opens a root folder of this machine; "/" for the machine itself.
    static Result<std::shared_ptr<const Volume>> open(const std::string& rootDirectory);
    /// The volume of a root folder that is open already.
    static Result<std::shared_ptr<const Volume>> open(FileDescriptor root);

    /// An entry by its folder and its name in it: what every operation that must not follow a last link works
    /// on.
    struct Entry {
        FileDescriptor folder;
        /// One component, never "." or "..".
        std::string name;
    };

    /// Opens a path with the flags of open(2), O_CLOEXEC added. Links are followed, inside the root.
    Result<FileDescriptor> openPath(std::string_view path, int flags, mode_t mode = 0) const;

    /// The facts about what a path names, links followed inside the root; about a last link itself for
    /// AT_SYMLINK_NOFOLLOW.
    Result<struct stat> status(std::string_view path, int flags) const;

    /// Whether a path names anything, with the flags of `status`; the error says why it does not, or why that
    /// cannot be told.
    Result<void> find(std::string_view path, int flags) const;

    /// The same about what a path names if its way goes through no link: ELOOP where it does, at its end too,
    /// ENOSYS where the kernel cannot tell.
    Result<struct stat> statusWithoutLinks(const std::string& path) const;

    /// A path as that of its folder and a name in it; both are views into it.
    struct Place {
        std::string_view folder;
        std::string_view name;
    };
    /// Absent for the root, for a path that ends in a dot component, and for what is no absolute path.
    static std::optional<Place> place(std::string_view path);

    /// The folder of a path's last component, opened for searching, its links followed. EINVAL where it has
    /// no place.
    Result<Entry> entry(std::string_view path) const;

    /// The name by which the rest of this machine knows an entry: the real path of its folder, plus its last
    /// component.
    Result<std::string> machinePath(std::string_view path) const;

    /// The Mac's path of a real path of this machine; absent for one outside the root.
    std::optional<std::string> volumePath(std::string_view machinePath) const;

    /// The root folder, opened for searching; it belongs to the volume.
    int root() const { return root_.get(); }
    /// The root's real path on this machine, when the volume was opened.
    const std::string& realRoot() const { return realRoot_; }
    /// Whether this is the machine's own root.
    bool isMachineRoot() const { return realRoot_ == "/"; }

  private:
    Volume(FileDescriptor root, std::string realRoot);

    FileDescriptor root_;
    std::string realRoot_;
};

}  // namespace orvane
