#pragma once

#include <cstdint>
#include <vector>

#include "Models/FileURL.h"
#include "Models/RelatedItem.h"
#include "Platform/FileManager.h"

namespace orvane {

/// The sum of two byte counts. One that does not fit ends the program.
std::int64_t sumOfSizes(std::int64_t a, std::int64_t b);

/// The sizes of all items together, in bytes.
std::int64_t totalSize(const std::vector<RelatedItem>& items);

/// Space on disk, in bytes, of the regular files in an application bundle, without hidden files and without
/// what nested packages hold. 0 for anything but a folder. Blocks on the disk.
std::int64_t bundleSize(const FileManager& fileManager, const FileURL& url);

/// Space on disk, in bytes: a regular file's own, else that of the regular files in a folder, nested packages
/// included, without hidden files. 0 for anything else. Blocks on the disk.
std::int64_t itemSize(const FileManager& fileManager, const FileURL& url);

}  // namespace orvane
