#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RemovalPlan.h"
#include "Models/RemovalResult.h"
#include "Platform/MacDisks.h"
#include "Services/RemovalMessage.h"

namespace orvane::commandline {

/// The documents that the commands write for other programs. A URL is percent-encoded and so exact for every
/// name; other text that is not valid UTF-8 is written with replacement characters.
using Json = nlohmann::ordered_json;

Json listDocument(std::span<const InstalledApplication* const> applications);
/// The reasons are the items', in their order, or none.
Json planDocument(const RemovalPlan& plan, const std::vector<std::string>& reasons = {});
Json dryRunDocument(const std::vector<RelatedItem>& items);
Json removalDocument(const RemovalResult& result, RemovalMode mode);

Json disksDocument(const MacDisks& found);

}  // namespace orvane::commandline
