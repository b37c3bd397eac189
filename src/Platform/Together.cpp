#include "Platform/Together.h"

#include <system_error>
#include <thread>
#include <vector>

namespace orvane {

void withHelpers(std::size_t count, FunctionRef<void()> work) {
    std::vector<std::thread> helpers;
    helpers.reserve(count);
    try {
        while (helpers.size() < count) helpers.emplace_back(work);
    } catch (const std::system_error&) {
        // The work is shared by those that there are.
    }
    work();
    for (auto& helper : helpers) helper.join();
}

}  // namespace orvane
