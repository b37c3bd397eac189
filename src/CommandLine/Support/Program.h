#pragma once

#include <asio/io_context.hpp>
#include <asio/thread_pool.hpp>
#include <memory>

#include "Platform/Machine.h"
#include "Services/AppLibrary.h"
#include "Services/AppRemovalService.h"
#include "Services/ApplicationCatalog.h"
#include "Services/ApplicationScanner.h"
#include "Services/RemovalPlanner.h"

namespace orvane::commandline {

/// The program's object graph. The calling thread is the main executor.
class Program {
  public:
    explicit Program(Machine machine);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Runs a command to its end and gives its exit status. Timers of the library that are still pending then
    /// are dropped: a missing application stays in the catalog until a longer-lived program has shown it.
    int run(Task<int> command);

    asio::any_io_executor mainExecutor() { return main_.get_executor(); }
    AppLibrary& library() { return *library_; }
    ApplicationScanner& scanner() { return scanner_; }
    ApplicationCatalog& catalog() { return catalog_; }
    RemovalPlanner& planner() { return planner_; }
    AppRemovalService& removalService() { return removalService_; }
    const LocalizedText& localizedText() const { return *machine_.localizedText; }

  private:
    Machine machine_;
    asio::thread_pool pool_;
    asio::io_context main_;
    ApplicationScanner scanner_;
    ApplicationCatalog catalog_;
    RemovalPlanner planner_;
    AppRemovalService removalService_;
    std::shared_ptr<AppLibrary> library_;
};

}  // namespace orvane::commandline
