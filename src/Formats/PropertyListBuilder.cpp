#include "Formats/PropertyListBuilder.h"

#include <vector>

namespace orvane {

/// A list of lists would be destroyed as deeply as it is nested, and a thread's stack can be small: what goes
/// with a value waits here for its turn.
void PropertyListBuilder::destroy(const PropertyList::Value* value) {
    thread_local std::vector<std::unique_ptr<const PropertyList::Value>>* waiting = nullptr;
    if (waiting != nullptr) {
        waiting->emplace_back(value);
        return;
    }
    std::vector<std::unique_ptr<const PropertyList::Value>> queue;
    waiting = &queue;
    queue.emplace_back(value);
    while (!queue.empty()) {
        const auto last = std::move(queue.back());
        queue.pop_back();
    }
    waiting = nullptr;
}

}  // namespace orvane
