#pragma once

#include <vector>

#include "Models/RelatedItem.h"
#include "Models/RemovalPlan.h"
#include "Models/RemovalResult.h"
#include "Platform/FileManager.h"
#include "Platform/PrivilegedRunner.h"
#include "Services/Actor.h"

namespace orvane {

/// Removes a batch of items with administrator rights, behind one prompt, and says afterwards from the disk
/// what is gone. The platform services outlive it.
class PrivilegedRemovalService : private Actor {
  public:
    using Action = RemovalMode;

    PrivilegedRemovalService(const asio::any_io_executor& pool, const FileManager& fileManager,
                             PrivilegedRunner& privilegedRunner);

    /// Runs the request once for the whole batch; nothing at all for an empty one. Blocks the actor while the
    /// prompt and the commands take their time.
    /// `folders` are those of the items as they were shown, where that is known. Never throws: every failure
    /// is an entry of the result.
    Task<RemovalResult> remove(std::vector<RelatedItem> items, Action action, FoldersOfItems folders = {});

  private:
    const FileManager& fileManager_;
    PrivilegedRunner& privilegedRunner_;
};

}  // namespace orvane
