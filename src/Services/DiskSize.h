#pragma once

#include <asio/any_io_executor.hpp>
#include <cstdint>
#include <vector>

#include "Models/FileURL.h"
#include "Models/RelatedItem.h"
#include "Platform/FileManager.h"

namespace orvane {

/// The sizes of all items together, in bytes.
std::int64_t totalSize(const std::vector<RelatedItem>& items);

// Space on disk of each URL's files, in bytes and in the order of the URLs. The trees are shared among the
// calling thread and the idle threads of the pool, which wait for the disk.

/// Of the regular files in an application bundle, without hidden files and without what nested packages hold.
/// 0 for anything but a folder.
std::vector<std::int64_t> bundleSizes(const asio::any_io_executor& pool, const FileManager& fileManager,
                                      const std::vector<FileURL>& urls);

/// A regular file's own, else that of the regular files in a folder, nested packages included, without hidden
/// files. 0 for anything else.
std::vector<std::int64_t> itemSizes(const asio::any_io_executor& pool, const FileManager& fileManager,
                                    const std::vector<FileURL>& urls);

}  // namespace orvane
