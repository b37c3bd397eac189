#include "Services/DiskSize.h"

#include "Models/FileSize.h"
#include "Services/ParallelFor.h"

namespace orvane {

namespace {

std::vector<AllocatedSizes> sizesOfFolders(const asio::any_io_executor& pool, const FileManager& fileManager,
                                           const std::vector<FileURL>& urls, WalkOptions options) {
    return fileManager.allocatedSizes(urls, options,
                                      [&](FunctionRef<void()> work) { workTogether(pool, work); });
}

}  // namespace

std::int64_t totalSize(const std::vector<RelatedItem>& items) {
    std::int64_t total = 0;
    for (const auto& item : items) total = sumOfSizes(total, item.size);
    return total;
}

std::vector<std::int64_t> bundleSizes(const asio::any_io_executor& pool, const FileManager& fileManager,
                                      const std::vector<FileURL>& urls) {
    std::vector<std::int64_t> sizes;
    for (const auto& folder : sizesOfFolders(pool, fileManager, urls,
                                             {.skipsHiddenFiles = true, .skipsPackageDescendants = true})) {
        sizes.push_back(folder.totalFileAllocatedSize);
    }
    return sizes;
}

std::vector<std::int64_t> itemSizes(const asio::any_io_executor& pool, const FileManager& fileManager,
                                    const std::vector<FileURL>& urls) {
    const auto folders = sizesOfFolders(pool, fileManager, urls, {.skipsHiddenFiles = true});
    std::vector<std::int64_t> sizes(urls.size());
    parallelFor(pool, urls.size(), [&](std::size_t index) {
        const auto values = fileManager.resourceValues(urls[index]);
        sizes[index] = values && values->isRegularFile ? values->fileAllocatedSize.value_or(0)
                                                       : folders[index].fileAllocatedSize;
    });
    return sizes;
}

}  // namespace orvane
