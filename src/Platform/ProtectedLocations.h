#pragma once

#include "Platform/EntryRemover.h"
#include "Platform/FileManager.h"
#include "Platform/Places.h"

namespace orvane {

/// The places that no removal takes away, because more than one application or person has files there: the
/// root and everything directly in it, the home and everything beside it, the application folders, the Trash,
/// the shared folders in the Libraries, and whatever lies above any of these. An application can name one by
/// an identifier that is empty or holds dot-dot components; a catalog can name any.
///
/// They are known by device and inode, not by spelling, as they were when this was made. Where one of them is
/// a link, the link and the folder that it leads to are both meant; a link elsewhere that leads to one of
/// them is not. Immutable; the file manager outlives it. Calls block on the disk.
class ProtectedLocations {
  public:
    explicit ProtectedLocations(const FileManager& fileManager);

    /// Whether an entry that has been looked at is one of them. False where nothing exists; true where it
    /// cannot be told, or could not when this was made.
    bool contains(const Result<EntryFacts>& found) const;

  private:
    Places folders_;
    /// All of whose entries are protected.
    Places crowdedFolders_;
};

}  // namespace orvane
