#include "Platform/Posix/PosixEntryRemover.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "Platform/Places.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/KeptFolder.h"
#include "Platform/Posix/Trash.h"
#include "Platform/Posix/TreeRemoval.h"

namespace orvane {

namespace {

class PosixEntryRemover final : public EntryRemover {
  public:
    PosixEntryRemover(std::shared_ptr<const Volume> volume, std::string home)
        : volume_(std::move(volume)), trash_(*volume_, std::move(home)) {}

    Result<EntryFacts> look(const FileURL& url) override;
    Result<void> moveToTrash(const std::optional<FileIdentity>& folder) override;
    Result<void> remove(const std::optional<FileIdentity>& folder, Together together) override;

  private:
    Result<EntryFacts> lookAtFolder(std::string_view path) const;
    Result<void> checkEntryOf(const std::optional<FileIdentity>& folder) const;

    const std::shared_ptr<const Volume> volume_;
    /// The folder of the entry that was looked at last.
    KeptFolder folder_;
    /// Its name there; empty while there is no such entry.
    std::string name_;
    struct stat status_ {};
    Trash trash_;
};

Result<EntryFacts> PosixEntryRemover::look(const FileURL& url) {
    name_.clear();
    const auto path = url.fileSystemPath();
    if (!path) return failure(std::errc::no_such_file_or_directory);
    const auto place = Volume::place(*path);
    if (!place) return lookAtFolder(*path);
    const auto opened =
        folder_.open(*volume_, place->folder, [&] { return volume_->openPath(place->folder, searchFlags); });
    if (!opened) return tl::unexpected(opened.error());
    name_ = place->name;
    const auto status = statusOf(folder_.descriptor(), name_.c_str());
    if (!status) {
        name_.clear();
        return tl::unexpected(status.error());
    }
    status_ = *status;
    return EntryFacts{.identity = identityOf(status_),
                      .folder = folder_.identity(),
                      .isSymbolicLink = S_ISLNK(status_.st_mode),
                      .isReachedDirectly = folder_.isReachedDirectly()};
}

/// The folder that a path names by its end, which is no entry of another folder.
Result<EntryFacts> PosixEntryRemover::lookAtFolder(std::string_view path) const {
    const auto status = volume_->status(path, AT_SYMLINK_NOFOLLOW);
    if (!status) return tl::unexpected(status.error());
    return volume_->status(folderPath(path), AT_SYMLINK_NOFOLLOW).map([&](const struct stat& around) {
        return EntryFacts{.identity = identityOf(*status), .folder = identityOf(around)};
    });
}

Result<void> PosixEntryRemover::checkEntryOf(const std::optional<FileIdentity>& folder) const {
    if (name_.empty()) return failure(std::errc::invalid_argument);
    if (folder && *folder != folder_.identity()) {
        return tl::unexpected(std::error_code(ESTALE, std::generic_category()));
    }
    return {};
}

Result<void> PosixEntryRemover::moveToTrash(const std::optional<FileIdentity>& folder) {
    return checkEntryOf(folder).and_then([&] { return trash_.take(folder_.wayUp(), name_, status_); });
}

Result<void> PosixEntryRemover::remove(const std::optional<FileIdentity>& folder, Together together) {
    if (auto checked = checkEntryOf(folder); !checked) return checked;
    if (const auto error = removeTree(folder_.descriptor(), name_.c_str(), together)) {
        return tl::unexpected(error);
    }
    return {};
}

}  // namespace

std::unique_ptr<EntryRemover> makeEntryRemover(std::shared_ptr<const Volume> volume, std::string home) {
    return std::make_unique<PosixEntryRemover>(std::move(volume), std::move(home));
}

}  // namespace orvane
