#pragma once

#include <asio/io_context.hpp>
#include <memory>

#include "Programs/ObjectGraph.h"

namespace orvane::commandline {

/// The program's object graph. The calling thread is the main executor.
class CommandLineProgram {
  public:
    explicit CommandLineProgram(Machine machine);

    /// Runs a command to its end and gives its exit status. Timers of the library that are still pending then
    /// are dropped: a missing application stays in the catalog until a longer-lived program has shown it.
    int run(Task<int> command);

    asio::any_io_executor mainExecutor() { return graph_.mainExecutor(); }
    AppLibrary& library() { return *graph_.library(); }
    ApplicationScanner& scanner() { return graph_.scanner(); }
    ApplicationCatalog& catalog() { return graph_.catalog(); }
    RemovalPlanner& planner() { return *planner_; }
    AppRemovalService& removalService() { return *removalService_; }
    const LocalizedText& localizedText() const { return *graph_.machine().localizedText; }

  private:
    ObjectGraph<asio::io_context> graph_;
    const std::shared_ptr<RemovalPlanner> planner_;
    const std::shared_ptr<AppRemovalService> removalService_;
};

}  // namespace orvane::commandline
