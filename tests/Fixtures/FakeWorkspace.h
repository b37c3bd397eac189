#pragma once

#include <mutex>
#include <vector>

#include "Platform/Workspace.h"

namespace orvane::test {

/// A desktop whose process list the test sets, and which remembers what was asked of it. Thread-safe.
class FakeWorkspace : public Workspace {
  public:
    void setRunningApplications(std::vector<RunningApplication> applications);
    /// The services that were asked to quit, in the order of the requests.
    std::vector<RunningService> terminated() const;
    /// The files that were shown in the file viewer, in that order.
    std::vector<FileURL> revealed() const;

    std::vector<RunningApplication> runningApplications() const override;
    void terminate(const RunningService& service) override;
    void activateFileViewerSelecting(const FileURL& url) override;

  private:
    mutable std::mutex mutex_;
    std::vector<RunningApplication> runningApplications_;
    std::vector<RunningService> terminated_;
    std::vector<FileURL> revealed_;
};

}  // namespace orvane::test
