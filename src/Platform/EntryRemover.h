#pragma once

#include <optional>

#include "Models/FileIdentity.h"
#include "Models/FileURL.h"
#include "Platform/Result.h"
#include "Platform/Together.h"

namespace orvane {

/// What an entry is, links not followed, and where it lies.
struct EntryFacts {
    FileIdentity identity;
    /// The folder that its path leads to.
    FileIdentity folder;
    bool isSymbolicLink = false;
    /// Whether the whole way to the folder is known to go through no link.
    bool isReachedDirectly = false;
};

/// Removes entries, one after the other, each as it is when its turn comes: it is looked at, and then it goes
/// from the very folder in which it was seen, wherever its path leads by then. That folder and the Trash stay
/// open from one entry to the next, and what was found out about them holds, as long as their paths lead to
/// them through no link, which is asked for every entry: so the entries of one folder cost little more than
/// their own removal, and a folder that is moved away, or exchanged, is another one from then on. Holds a
/// handful of descriptors. For one thread at a time; calls block on the disk.
class EntryRemover {
  public:
    virtual ~EntryRemover() = default;

    /// Looks at the entry that the operations below are about until the next one is looked at. An error, as
    /// for an entry that is not there, leaves them none.
    virtual Result<EntryFacts> look(const FileURL& url) = 0;

    // Where a folder is given, both do nothing to an entry of any other one: ESTALE. EINVAL where there is no
    // entry that has been looked at, and for the root and what a path names by a dot component at its end.

    /// Moves the entry (a link as a link) into the user's Trash under a name that is free there. Never
    /// overwrites, never copies: another file system is an error.
    virtual Result<void> moveToTrash(const std::optional<FileIdentity>& folder) = 0;
    /// Removes the entry, a folder with everything in it, following no link and crossing no mount point. One
    /// entry that cannot be removed does not stop the rest; the first error is the one returned. All folders
    /// are shared among the threads that `together` brings.
    virtual Result<void> remove(const std::optional<FileIdentity>& folder, Together together) = 0;
};

}  // namespace orvane
