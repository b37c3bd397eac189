#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Models/FileIdentity.h"

namespace orvane {

/// A user's home on a disk.
struct MacHome {
    /// The Mac's own path, such as "/Users/sample".
    std::string path;
    /// Whether the folder belongs to the person who looks, or that is root: else an administrator is needed
    /// for most of what is in it.
    bool isOwn = false;
    friend bool operator==(const MacHome&, const MacHome&) = default;
};

/// A Mac's disk that this machine, which is no Mac, can look at.
struct MacDisk {
    /// The folder that is its root, an absolute path of this machine.
    std::string root;
    /// In bytes, of the file system that it lies on.
    std::int64_t capacity = 0;
    std::int64_t available = 0;
    bool isReadOnly = false;
    /// Sorted by path.
    std::vector<MacHome> homes;
    FileIdentity identity;
    friend bool operator==(const MacDisk&, const MacDisk&) = default;
};

struct MacDisks {
    /// Each disk once, wherever it is mounted besides; sorted by root.
    std::vector<MacDisk> disks;
    /// Folders that have not answered in time, such as those of a server that is gone; sorted.
    std::vector<std::string> silent;
};

/// Whether this machine is one that looks at the disks of Macs. A Mac is not: it has its own.
bool looksAtMacDisks();

/// The folders that other file systems are mounted on and that may hold a Mac's disk, in their order.
std::vector<std::string> mountedFolders();

/// Which of these folders are a Mac's disk: one that has a folder `Applications`, a folder `Users`, and
/// `System` or `Library`, none of them a link. What cannot be read is none.
///
/// Any thread. A folder that does not answer holds up nobody for longer than `patience`; what has been
/// started for it ends with the process, or when the folder answers after all.
MacDisks macDisksAmong(const std::vector<std::string>& folders, std::chrono::milliseconds patience);

}  // namespace orvane
