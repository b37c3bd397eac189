#pragma once

#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RelatedItem.h"
#include "Models/RunningService.h"

namespace orvane {

/// What belongs to one application at the moment it was asked for.
struct RemovalPlan {
    InstalledApplication application;
    std::vector<RelatedItem> items;
    std::vector<RunningService> runningServices;
};

}  // namespace orvane
