#include "Formats/PropertyList.h"

#include <utility>

#include "Formats/PropertyListReaders.h"

namespace orvane {

namespace {

template <typename T>
std::optional<T> optionalCopy(const T* value) {
    return value != nullptr ? std::optional<T>(*value) : std::nullopt;
}

}  // namespace

PropertyList::PropertyList(std::shared_ptr<const Value> value) : value_(std::move(value)) {}

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > maximumBytes) return std::nullopt;
    return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes) : readXMLPropertyList(bytes);
}

const PropertyList::Dictionary* PropertyList::dictionary() const {
    return std::get_if<Dictionary>(value_.get());
}

const PropertyList::Array* PropertyList::array() const {
    return std::get_if<Array>(value_.get());
}

const std::string* PropertyList::string() const {
    return std::get_if<std::string>(value_.get());
}

std::optional<bool> PropertyList::boolean() const {
    return optionalCopy(std::get_if<bool>(value_.get()));
}

std::optional<std::int64_t> PropertyList::integer() const {
    return optionalCopy(std::get_if<std::int64_t>(value_.get()));
}

std::optional<double> PropertyList::real() const {
    return optionalCopy(std::get_if<double>(value_.get()));
}

const std::string* PropertyList::string(std::string_view key) const {
    const auto* entries = dictionary();
    if (entries == nullptr) return nullptr;
    const auto entry = entries->find(key);
    return entry != entries->end() ? entry->second.string() : nullptr;
}

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
