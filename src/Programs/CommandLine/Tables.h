#pragma once

#include <span>
#include <string>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RemovalPlan.h"
#include "Platform/MacDisks.h"

namespace orvane::commandline {

/// The same for a person: one line per thing, columns aligned, names made safe to print.
std::string listTable(std::span<const InstalledApplication* const> applications);
/// The reasons are the items', in their order, or none.
std::string planTable(const RemovalPlan& plan, const std::vector<std::string>& reasons = {});
std::string itemTable(const std::vector<RelatedItem>& items, const std::vector<std::string>& reasons = {});
std::string disksTable(const std::vector<MacDisk>& disks);

}  // namespace orvane::commandline
