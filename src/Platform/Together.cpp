#include "Platform/Together.h"

#include <system_error>
#include <thread>
#include <vector>

namespace orvane {

namespace {

/// Waited for at the end of its life: not every system's standard library has a thread that does that itself.
struct Helpers {
    Helpers() = default;
    Helpers(const Helpers&) = delete;
    Helpers& operator=(const Helpers&) = delete;
    ~Helpers() {
        for (auto& each : threads) each.join();
    }

    std::vector<std::thread> threads;
};

}  // namespace

void withHelpers(std::size_t count, FunctionRef<void()> work) {
    Helpers helpers;
    helpers.threads.reserve(count);
    try {
        while (helpers.threads.size() < count) helpers.threads.emplace_back(work);
    } catch (const std::system_error&) {
        // The work is shared by those that there are.
    }
    work();
}

}  // namespace orvane
