#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Models/RelatedItem.h"
#include "Platform/EntryRemover.h"
#include "Platform/FileManager.h"
#include "Platform/Places.h"
#include "Platform/ProtectedLocations.h"
#include "Platform/SystemFolders.h"

namespace orvane {

/// What one removal does not even try, whoever listed it: a catalog or a bundle's information dictionary
/// comes from the disk that is looked at and can be made up. Reflects the disk as it was when this was made.
/// Immutable; the file manager outlives it. Calls block on the disk.
class RemovalRefusals {
  public:
    /// `kept` are the items that are to stay.
    RemovalRefusals(const FileManager& fileManager, const std::vector<RelatedItem>& kept);

    /// Why an item is refused that was found to be so, for a person to read; empty when nothing speaks
    /// against it, and where nothing is there that the user could remove.
    std::string_view reason(const RelatedItem& item, const Result<EntryFacts>& found) const;

  private:
    std::string_view applicationReason(const FileURL& url) const;
    bool holdsKeptItem(const FileURL& url, const Result<EntryFacts>& found) const;

    const FileManager& fileManager_;
    const SystemFolders folders_;
    const ProtectedLocations protectedLocations_;
    /// The kept items with every folder that one of them lies in.
    Places keptPlaces_;
    std::vector<std::string> keptPaths_;
};

}  // namespace orvane
