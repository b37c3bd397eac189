#pragma once

#include <sys/stat.h>

#include <string>

#include "Models/FileIdentity.h"
#include "Platform/Posix/KeptFolder.h"
#include "Platform/Posix/Volume.h"
#include "Platform/Posix/WayUp.h"
#include "Platform/Result.h"

namespace orvane {

/// Whether an entry of an open folder may be moved into a Trash: EINVAL for one that is, holds or lies in
/// that Trash, EBUSY for a folder on or in which something is mounted, since whoever empties the Trash would
/// lose that, too. `status` is what the entry was seen to be. The Trash itself need not be open: a folder
/// that it is or lies in, such as the home, will do.
Result<void> checkTrashable(WayUp& folder, const char* name, const struct stat& status,
                            const FileIdentity& trash, WayUp& inOrAroundTrash);

/// The Trash of a home, for one item after the other.
class Trash {
  public:
    /// The volume outlives it.
    Trash(const Volume& volume, std::string home);

    /// Moves an entry of an open folder into the Trash under a name that is free there ("Foo 2.app" where
    /// there is a "Foo.app"), without ever replacing or copying anything. `status` is what the entry was seen
    /// to be. What `checkTrashable` refuses is an error. The implementation is the platform's.
    Result<void> take(WayUp& folder, const std::string& name, const struct stat& status);

  private:
    const Volume& volume_;
    const std::string home_;
    /// The Trash, or the home where the Trash is not opened.
    KeptFolder folder_;
};

}  // namespace orvane
