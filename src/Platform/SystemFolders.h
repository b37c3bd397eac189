#pragma once

#include <vector>

#include "Models/FileURL.h"

namespace orvane {

/// The fixed places of a Mac, given a home folder. Plain values; none need exist.
struct SystemFolders {
    explicit SystemFolders(const FileURL& home);

    FileURL home;
    /// Where applications are looked for, in this order: the machine's, the user's, the system's.
    std::vector<FileURL> applications;
    /// The folders in the user's Library in which an application keeps an entry of its own.
    std::vector<FileURL> library;
    FileURL userLaunchAgents;
    FileURL launchAgents;
    FileURL launchDaemons;
    FileURL groupContainers;
    FileURL trash;

    /// Every folder in which more than one application has its own files.
    std::vector<FileURL> shared() const;
};

}  // namespace orvane
