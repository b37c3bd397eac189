#include "Platform/Posix/KeptFolder.h"

#include <utility>

#include "Platform/Posix/FileStatus.h"

namespace orvane {

Result<void> KeptFolder::open(const Volume& volume, std::string_view path, Opener opener) {
    // While it is open no other folder can have its identity.
    if (isReachedDirectly_ && path == path_ && isWhereItWas(volume)) return {};
    *this = {};
    auto opened = opener();
    if (!opened) return tl::unexpected(opened.error());
    const auto status = statusOf(opened->get());
    if (!status) return tl::unexpected(status.error());
    path_ = path;
    descriptor_ = std::move(*opened);
    status_ = *status;
    wayUp_ = WayUp(descriptor_.get());
    isReachedDirectly_ = isWhereItWas(volume);
    return {};
}

FileIdentity KeptFolder::identity() const {
    return identityOf(status_);
}

bool KeptFolder::isWhereItWas(const Volume& volume) const {
    const auto found = volume.statusWithoutLinks(path_);
    return found && identityOf(*found) == identity() && found->st_uid == status_.st_uid;
}

}  // namespace orvane
