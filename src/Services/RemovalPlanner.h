#pragma once

#include <string>
#include <vector>

#include "Models/RemovalPlan.h"
#include "Platform/FileManager.h"
#include "Platform/Workspace.h"
#include "Services/Actor.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// Gathers what belongs to one application outside its bundle, and its processes. Changes nothing on the disk
/// and keeps nothing between calls. The platform services outlive it.
class RemovalPlanner : private Actor {
  public:
    RemovalPlanner(const asio::any_io_executor& pool, const FileManager& fileManager,
                   const Workspace& workspace, const LocalizedText& localizedText);

    /// The plan for one application as the disk and the process list are now. Runs on the actor, its size
    /// walks over the pool; resumes the caller on the caller's executor. Never fails: what cannot be read
    /// contributes nothing.
    Task<RemovalPlan> plan(InstalledApplication application);

    /// For each item of a plan, in its order, one sentence that says why it is there; empty where the disk
    /// has changed so that none is true any more. Runs as `plan` does.
    Task<std::vector<std::string>> reasons(RemovalPlan plan);

  private:
    asio::any_io_executor pool_;
    const FileManager& fileManager_;
    const Workspace& workspace_;
    const LocalizedText& localizedText_;
};

}  // namespace orvane
