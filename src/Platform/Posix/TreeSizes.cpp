#include "Platform/Posix/TreeSizes.h"

#include <mutex>
#include <utility>

#include "Models/FileSize.h"
#include "Platform/Posix/SharedWork.h"
#include "Platform/Posix/TreeWalk.h"

namespace orvane {

namespace {

/// A folder with all below it that no other part has.
struct Part {
    std::size_t tree = 0;
    /// None where the part is the whole tree, which is opened when its turn comes.
    FileDescriptor folder;
};

struct Measured {
    AllocatedSizes sizes;
    WalkOutcome outcome = WalkOutcome::complete;
};

void add(AllocatedSizes& sum, const AllocatedSizes& sizes) {
    sum.fileAllocatedSize = sumOfSizes(sum.fileAllocatedSize, sizes.fileAllocatedSize);
    sum.totalFileAllocatedSize = sumOfSizes(sum.totalFileAllocatedSize, sizes.totalFileAllocatedSize);
}

void add(Measured& sum, const Measured& part) {
    add(sum.sizes, part.sizes);
    if (part.outcome != WalkOutcome::complete) sum.outcome = part.outcome;
}

class TreeSizes {
  public:
    TreeSizes(FunctionRef<Result<FileDescriptor>(std::size_t)> open, WalkOptions options)
        : open_(open), options_(options) {}

    /// Leaves out the folders that `take` moves away.
    Measured measure(Part part, FunctionRef<bool(FileDescriptor&)> take) const {
        if (!part.folder) {
            auto opened = open_(part.tree);
            if (!opened) return {.sizes = {}, .outcome = outcomeOf(opened.error())};
            part.folder = std::move(*opened);
        }
        Measured measured;
        const auto visit = [&](const WalkEntry& entry) {
            if (!entry.isRegularFile) return;
            const auto size = entry.fileAllocatedSize.value_or(0);
            add(measured.sizes, {size, entry.totalFileAllocatedSize.value_or(size)});
        };
        measured.outcome = walkTree(std::move(part.folder), options_, visit, take);
        return measured;
    }

  private:
    FunctionRef<Result<FileDescriptor>(std::size_t)> open_;
    WalkOptions options_;
};

}  // namespace

std::vector<AllocatedSizes> sizesOfTrees(std::size_t count,
                                         FunctionRef<Result<FileDescriptor>(std::size_t)> open,
                                         WalkOptions options, Together together) {
    const TreeSizes trees(open, options);
    SharedWork<Part> parts;
    // The last one is the first to be taken.
    for (std::size_t tree = count; tree-- > 0;) parts.add({.tree = tree, .folder = {}});
    std::mutex mutex;
    std::vector<Measured> sums(count);
    together([&] {
        parts.takePart([&](Part part) {
            const auto tree = part.tree;
            const auto measured = trees.measure(std::move(part), [&](FileDescriptor& folder) {
                Part found{.tree = tree, .folder = std::move(folder)};
                const bool isLeft = parts.leave(found);
                if (!isLeft) folder = std::move(found.folder);
                return isLeft;
            });
            const std::lock_guard lock(mutex);
            add(sums[tree], measured);
        });
    });

    std::vector<AllocatedSizes> sizes;
    for (std::size_t tree = 0; tree < count; ++tree) {
        auto& sum = sums[tree];
        if (sum.outcome == WalkOutcome::shortOfDescriptors) {
            sum = trees.measure({.tree = tree, .folder = {}}, [](FileDescriptor&) { return false; });
        }
        sizes.push_back(sum.sizes);
    }
    return sizes;
}

}  // namespace orvane
