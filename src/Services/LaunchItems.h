#pragma once

#include <asio/any_io_executor.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Models/RelatedItem.h"
#include "Platform/FileManager.h"
#include "Platform/SystemFolders.h"
#include "Services/SearchTerms.h"

namespace orvane {

/// The launch agents and daemons whose text mentions any of the terms, folder by folder in the order of the
/// listings, each with its label where it has one; their sizes are not measured. Files are read over the pool
/// and the calling thread, which waits. What cannot be read, or is not text, contributes nothing.
std::vector<RelatedItem> launchItems(const asio::any_io_executor& pool, const FileManager& fileManager,
                                     const SystemFolders& folders, const SearchTerms& terms);

/// The text of a launch item, in which the terms are looked for; absent when it cannot be read, is too large
/// or is not text. Blocks on the disk.
std::optional<std::string> launchItemText(const FileManager& fileManager, const FileURL& url);

}  // namespace orvane
