#include "tests/Fixtures/FakeWorkspace.h"

#include <utility>

namespace orvane::test {

void FakeWorkspace::setRunningApplications(std::vector<RunningApplication> applications) {
    const std::scoped_lock lock(mutex_);
    runningApplications_ = std::move(applications);
}

std::vector<RunningService> FakeWorkspace::terminated() const {
    const std::scoped_lock lock(mutex_);
    return terminated_;
}

std::vector<FileURL> FakeWorkspace::revealed() const {
    const std::scoped_lock lock(mutex_);
    return revealed_;
}

std::vector<RunningApplication> FakeWorkspace::runningApplications() const {
    const std::scoped_lock lock(mutex_);
    return runningApplications_;
}

void FakeWorkspace::terminate(const RunningService& service) {
    const std::scoped_lock lock(mutex_);
    terminated_.push_back(service);
}

void FakeWorkspace::activateFileViewerSelecting(const FileURL& url) {
    const std::scoped_lock lock(mutex_);
    revealed_.push_back(url);
}

}  // namespace orvane::test
