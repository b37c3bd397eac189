#pragma once

#include <string>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RemovalPlan.h"

namespace orvane::commandline {

/// The same for a person: one line per thing, columns aligned, names made safe to print.
std::string listTable(const std::vector<InstalledApplication>& applications);
std::string planTable(const RemovalPlan& plan);
std::string itemTable(const std::vector<RelatedItem>& items);

}  // namespace orvane::commandline
