#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "Models/FileIdentity.h"
#include "Models/InstalledApplication.h"
#include "Models/RelatedItem.h"
#include "Models/RunningService.h"

namespace orvane {

/// Of items, by their `id`: the folder in which each of them lay when it was listed. A folder that has come
/// to its place since is another one, and what is in it was not shown.
using FoldersOfItems = std::unordered_map<std::string, FileIdentity>;

/// What belongs to one application at the moment it was asked for.
struct RemovalPlan {
    InstalledApplication application;
    std::vector<RelatedItem> items;
    std::vector<RunningService> runningServices;
    FoldersOfItems folders{};
};

/// What was shown with the items that are to go.
struct ReviewedPlan {
    /// The items that are to stay.
    std::vector<RelatedItem> kept;
    FoldersOfItems folders;
};

}  // namespace orvane
