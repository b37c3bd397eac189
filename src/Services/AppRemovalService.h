#pragma once

#include <asio/any_io_executor.hpp>
#include <functional>
#include <optional>
#include <vector>

#include "Models/RelatedItem.h"
#include "Models/RemovalPlan.h"
#include "Models/RemovalResult.h"
#include "Models/RunningService.h"
#include "Platform/FileManager.h"
#include "Platform/Workspace.h"
#include "Services/Actor.h"
#include "Services/PrivilegedRemovalService.h"

namespace orvane {

/// Carries out one confirmed removal: asks the processes to quit, removes what the user's rights can, and
/// hands everything else to the privileged service in one batch. Keeps nothing between calls. The platform
/// services outlive it.
class AppRemovalService : private Actor {
  public:
    AppRemovalService(const asio::any_io_executor& pool, FileManager& fileManager, Workspace& workspace,
                      PrivilegedRunner& privilegedRunner);

    /// Both run on the actor and resume the caller on the caller's executor. Never throw: what could not be
    /// removed is an entry of `failed`. An item that is already gone is neither removed nor failed.
    ///
    /// `removed` lists what the user's own rights removed, in item order, then what the privileged service
    /// did. `failed` lists what is refused (`RemovalRefusals`), of which nothing is tried, in item order,
    /// then what the privileged service reported.
    ///
    /// An item in which one lies that is to stay is refused. One whose folder is no longer the one that was
    /// shown is not touched with the user's own rights, nor with an administrator's.
    Task<RemovalResult> moveToTrash(std::vector<RelatedItem> items,
                                    std::vector<RunningService> runningServices, ReviewedPlan reviewed);
    Task<RemovalResult> deletePermanently(std::vector<RelatedItem> items,
                                          std::vector<RunningService> runningServices, ReviewedPlan reviewed);

  private:
    /// Removes the entry that was looked at last, with the user's own rights.
    using Operation = std::function<Result<void>(EntryRemover&, const std::optional<FileIdentity>& folder)>;

    Task<RemovalResult> remove(std::vector<RelatedItem> items, std::vector<RunningService> runningServices,
                               ReviewedPlan reviewed, PrivilegedRemovalService::Action privilegedAction,
                               Operation operation);

    asio::any_io_executor pool_;
    FileManager& fileManager_;
    Workspace& workspace_;
    PrivilegedRemovalService privilegedRemovalService_;
};

}  // namespace orvane
