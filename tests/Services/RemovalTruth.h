#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Models/RelatedItem.h"
#include "Models/RemovalResult.h"
#include "tests/Fixtures/DiskLook.h"

namespace orvane::test {

/// What the administrator's part of a removal did, as its runner saw it.
struct AdministratorRun {
    /// The paths that it was given, each with the place for it in the Trash.
    std::map<std::string, std::string> destinations;
    /// Whether any command ran.
    bool hasRunCommands = false;
    /// What every item's reason has to be; empty after a success, when the disk decides.
    std::string failureReason;
    /// Where somebody else took something away meanwhile.
    std::set<std::string> vanished;
};

/// One removal with all that can be known about it from outside.
struct ObservedRemoval {
    struct Item {
        RelatedItem item;
        /// The reason for which nothing may be tried; empty when there is none.
        std::string refusal;
    };

    bool isToTrash = false;
    std::vector<Item> items;
    std::optional<AdministratorRun> run;
    RemovalResult result;
    DiskLook before;
    DiskLook after;
};

/// Everything in which the result and the disk disagree, one line each:
/// - An entry of `removed` is gone from its place: in the Trash, the same file under a name of its own, or
///   nowhere. An entry of `failed` is still there, unless the run failed that its reason tells of.
/// - What is in neither list was not there when its turn came.
/// - Nothing else has been moved, changed, made or taken away.
///
/// As everywhere on a Mac, nothing is "there" at a link that leads nowhere.
std::vector<std::string> untruths(const ObservedRemoval& removal);

}  // namespace orvane::test
