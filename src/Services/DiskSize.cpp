#include "Services/DiskSize.h"

#include "Services/FatalError.h"

namespace orvane {

std::int64_t sumOfSizes(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) fatalError("a sum of file sizes exceeds 64 bits");
    return sum;
}

std::int64_t totalSize(const std::vector<RelatedItem>& items) {
    std::int64_t total = 0;
    for (const auto& item : items) total = sumOfSizes(total, item.size);
    return total;
}

std::int64_t bundleSize(const FileManager& fileManager, const FileURL& url) {
    std::int64_t total = 0;
    fileManager.walk(
        url, {.skipsHiddenFiles = true, .skipsPackageDescendants = true}, [&](const WalkEntry& entry) {
            if (!entry.isRegularFile) return;
            const auto size =
                entry.totalFileAllocatedSize ? entry.totalFileAllocatedSize : entry.fileAllocatedSize;
            total = sumOfSizes(total, size.value_or(0));
        });
    return total;
}

std::int64_t itemSize(const FileManager& fileManager, const FileURL& url) {
    const auto values = fileManager.resourceValues(url);
    if (values && values->isRegularFile) return values->fileAllocatedSize.value_or(0);
    std::int64_t total = 0;
    fileManager.walk(url, {.skipsHiddenFiles = true}, [&](const WalkEntry& entry) {
        if (entry.isRegularFile) total = sumOfSizes(total, entry.fileAllocatedSize.value_or(0));
    });
    return total;
}

}  // namespace orvane
