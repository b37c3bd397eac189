#pragma once

#include <asio/any_io_executor.hpp>
#include <functional>
#include <memory>

#include "Platform/Workspace.h"
#include "Services/AppLibrary.h"
#include "Services/AppRemovalService.h"
#include "Services/RemovalPlanner.h"

namespace orvane {

/// What the views draw on. Made once, with the program's other objects, and outlives every view model. Each
/// detail pane has a planner of its own and each review sheet a removal service of its own, which live until
/// their last call has ended.
struct ViewServices {
    /// Runs on the thread of the views, never inside a call to it.
    asio::any_io_executor mainExecutor;
    /// For what may block.
    asio::any_io_executor pool;
    std::shared_ptr<AppLibrary> library;
    std::function<std::shared_ptr<RemovalPlanner>()> makePlanner;
    std::function<std::shared_ptr<AppRemovalService>()> makeRemovalService;
    Workspace& workspace;

    /// Starts an operation of the library: `start(&AppLibrary::scan)`.
    void start(Task<void> (AppLibrary::*operation)()) const;
};

}  // namespace orvane
