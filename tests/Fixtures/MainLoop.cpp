#include "tests/Fixtures/MainLoop.h"

#include <stdexcept>

namespace orvane::test {

void MainLoop::runUntil(FunctionRef<bool()> condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) throw std::runtime_error("waited for nothing");
        context_.run_one_for(std::chrono::milliseconds(20));
    }
}

void MainLoop::drain() {
    context_.poll();
}

}  // namespace orvane::test
