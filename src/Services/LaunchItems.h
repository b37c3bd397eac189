#pragma once

#include <asio/any_io_executor.hpp>
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

}  // namespace orvane
