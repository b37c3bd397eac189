#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/thread_pool.hpp>
#include <memory>
#include <utility>

#include "Platform/Machine.h"
#include "Services/AppLibrary.h"
#include "Services/AppRemovalService.h"
#include "Services/ApplicationCatalog.h"
#include "Services/ApplicationScanner.h"
#include "Services/RemovalPlanner.h"

namespace orvane {

/// What every program is made of: the machine, the pool that its actors work on, and the library with the
/// scanner and the catalog that it owns. `MainContext` is the execution context of the main thread (Qt's
/// event loop in the window, an `asio::io_context` on the command line). Made and destroyed on the main
/// thread.
template <typename MainContext>
class ObjectGraph {
  public:
    explicit ObjectGraph(Machine machine)
        : machine_(std::move(machine)),
          scanner_(pool(), *machine_.fileManager, *machine_.bundleLoader, *machine_.localizedText),
          catalog_(pool(), *machine_.fileManager, *machine_.localizedText),
          library_(AppLibrary::make(mainExecutor(), scanner_, catalog_, *machine_.localizedText,
                                    *machine_.clock)) {}
    ~ObjectGraph() { join(); }
    ObjectGraph(const ObjectGraph&) = delete;
    ObjectGraph& operator=(const ObjectGraph&) = delete;

    /// Waits for what is under way on the pool, so that a removal that has begun is carried out. Nothing runs
    /// on it after that.
    void join() { pool_.join(); }

    std::shared_ptr<RemovalPlanner> makePlanner() {
        return std::make_shared<RemovalPlanner>(pool(), *machine_.fileManager, *machine_.workspace,
                                                *machine_.localizedText);
    }
    std::shared_ptr<AppRemovalService> makeRemovalService() {
        return std::make_shared<AppRemovalService>(pool(), *machine_.fileManager, *machine_.workspace,
                                                   *machine_.privilegedRunner);
    }

    const Machine& machine() const { return machine_; }
    MainContext& main() { return main_; }
    asio::any_io_executor mainExecutor() { return main_.get_executor(); }
    /// For what may block.
    asio::any_io_executor pool() { return pool_.get_executor(); }
    ApplicationScanner& scanner() { return scanner_; }
    ApplicationCatalog& catalog() { return catalog_; }
    const std::shared_ptr<AppLibrary>& library() { return library_; }

  private:
    /// Most of what the pool does waits for the disk, which answers many requests at once in little more time
    /// than one. While nothing waits, more threads than cores cost next to nothing.
    static constexpr std::size_t threadsThatMayWait = 16;

    // In this order they are made, and in the opposite one they go: work that is dropped still finds the
    // machine.
    Machine machine_;
    asio::thread_pool pool_{threadsThatMayWait};
    MainContext main_;
    ApplicationScanner scanner_;
    ApplicationCatalog catalog_;
    std::shared_ptr<AppLibrary> library_;
};

}  // namespace orvane
