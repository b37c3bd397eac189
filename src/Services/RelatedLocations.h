#pragma once

#include <string>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RelatedItemKind.h"

namespace orvane {

/// A place where an application's own files can be, whether or not something is there.
struct RelatedLocation {
    enum class Naming { bundle, identifier, name };

    FileURL url;
    RelatedItemKind kind = RelatedItemKind::other;
    /// What gives the place its name: it is the bundle itself, or named after its identifier or its file
    /// name.
    Naming naming = Naming::bundle;
    /// The folder that the place is in, below the home: "Library/Caches".
    std::string folder;
};

/// All such places of one application, in the order of a plan.
std::vector<RelatedLocation> relatedLocations(const InstalledApplication& application, const FileURL& home);

}  // namespace orvane
