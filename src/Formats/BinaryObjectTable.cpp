#include "Formats/BinaryObjectTable.h"

#include "Formats/PropertyList.h"

namespace orvane {

namespace {

constexpr std::size_t trailerSize = 32;

}  // namespace

std::uint64_t bigEndianInteger(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

std::optional<BinaryObjectTable> BinaryObjectTable::open(std::string_view bytes) {
    if (!bytes.starts_with(signature) || bytes.size() < signature.size() + trailerSize) return std::nullopt;
    const auto offsetsEnd = bytes.size() - trailerSize;
    const auto trailer = bytes.substr(offsetsEnd);
    const auto offsetSize = bigEndianInteger(trailer.substr(6, 1));
    const auto referenceSize = bigEndianInteger(trailer.substr(7, 1));
    const auto count = bigEndianInteger(trailer.substr(8, 8));
    const auto topObject = bigEndianInteger(trailer.substr(16, 8));
    const auto offsetsStart = bigEndianInteger(trailer.substr(24, 8));
    if (offsetSize < 1 || offsetSize > 8 || referenceSize < 1 || referenceSize > 8) return std::nullopt;
    if (count > PropertyList::maximumObjects || topObject >= count) return std::nullopt;
    if (offsetsStart < signature.size() || offsetsStart > offsetsEnd) return std::nullopt;
    if (offsetsEnd - offsetsStart != count * offsetSize) return std::nullopt;

    BinaryObjectTable table;
    table.objects_ = bytes.substr(0, offsetsStart);
    table.offsets_ = bytes.substr(offsetsStart, offsetsEnd - offsetsStart);
    table.offsetSize_ = offsetSize;
    table.referenceSize_ = referenceSize;
    table.count_ = count;
    table.topObject_ = topObject;
    table.remaining_ = offsetsStart - signature.size();
    return table;
}

std::optional<BinaryObjectTable::Object> BinaryObjectTable::take(std::size_t index) {
    const auto offset = bigEndianInteger(offsets_.substr(index * offsetSize_, offsetSize_));
    if (offset < signature.size() || offset >= objects_.size()) return std::nullopt;
    position_ = offset;
    const auto head = takeBytes(1);
    if (!head) return std::nullopt;
    const auto byte = static_cast<unsigned>(bigEndianInteger(*head));
    Object object{static_cast<Type>(byte >> 4U), byte & 0xFU, {}};
    const auto size = payloadSize(object);
    const auto payload = size ? takeBytes(*size) : std::nullopt;
    if (!payload) return std::nullopt;
    object.payload = *payload;
    return object;
}

std::uint64_t BinaryObjectTable::reference(const Object& container, std::size_t position) const {
    return bigEndianInteger(container.payload.substr(position * referenceSize_, referenceSize_));
}

std::optional<std::string_view> BinaryObjectTable::takeBytes(std::uint64_t count) {
    if (count > remaining_ || count > objects_.size() - position_) return std::nullopt;
    const auto bytes = objects_.substr(position_, count);
    position_ += count;
    remaining_ -= count;
    return bytes;
}

/// How many letters, bytes or references: up to fourteen in the head itself, else as an integer of its own.
std::optional<std::uint64_t> BinaryObjectTable::takeCount(unsigned detail) {
    if (detail != 0xF) return detail;
    const auto head = takeBytes(1);
    if (!head || (bigEndianInteger(*head) & 0xFCU) != 0x10) return std::nullopt;
    const auto bytes = takeBytes(std::uint64_t{1} << (bigEndianInteger(*head) & 0x3U));
    if (!bytes) return std::nullopt;
    const auto count = bigEndianInteger(*bytes);
    // So that what is multiplied with it cannot overflow.
    return count <= objects_.size() ? std::optional(count) : std::nullopt;
}

std::optional<std::uint64_t> BinaryObjectTable::payloadSize(const Object& object) {
    std::uint64_t unit = 1;
    switch (object.type) {
        case Type::constant:
            return 0;
        case Type::integer:
        case Type::real:
        case Type::date:
            return std::uint64_t{1} << object.detail;
        case Type::uid:
            return object.detail + 1;
        case Type::data:
        case Type::text:
            break;
        case Type::utf16Text:
            unit = 2;
            break;
        case Type::array:
            unit = referenceSize_;
            break;
        case Type::dictionary:
            unit = 2 * referenceSize_;
            break;
        default:
            return std::nullopt;
    }
    const auto count = takeCount(object.detail);
    return count ? std::optional(*count * unit) : std::nullopt;
}

}  // namespace orvane
