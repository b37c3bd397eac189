#include "Formats/PropertyList.h"

#include <utility>

#include "Formats/BinaryPropertyListReader.h"
#include "Formats/XMLPropertyListReader.h"

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

}  // namespace orvane
