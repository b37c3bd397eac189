#include "tests/Fixtures/BinaryPropertyListWriter.h"

namespace orvane::test {

namespace {

constexpr std::size_t referenceSize = 4;

}  // namespace

std::size_t BinaryPropertyListWriter::add(std::string_view object) {
    const auto index = addOffset(end());
    bytes_ += object;
    return index;
}

std::size_t BinaryPropertyListWriter::addText(std::string_view ascii) {
    return add(head(0x5, ascii.size()) + std::string(ascii));
}

std::size_t BinaryPropertyListWriter::addArray(const std::vector<std::size_t>& elements) {
    auto object = head(0xA, elements.size());
    for (const auto element : elements) object += bigEndian(element, referenceSize);
    return add(object);
}

std::size_t BinaryPropertyListWriter::addDictionary(const std::vector<std::size_t>& keysAndValues) {
    auto object = head(0xD, keysAndValues.size() / 2);
    for (const std::size_t first : {0U, 1U}) {
        for (auto i = first; i < keysAndValues.size(); i += 2)
            object += bigEndian(keysAndValues[i], referenceSize);
    }
    return add(object);
}

std::size_t BinaryPropertyListWriter::addOffset(std::uint64_t offset) {
    offsets_.push_back(offset);
    return offsets_.size() - 1;
}

std::string BinaryPropertyListWriter::written(std::size_t topObject) const {
    auto list = bytes_;
    for (const auto offset : offsets_) list += bigEndian(offset, 8);
    list += std::string(6, '\0') + '\x08' + static_cast<char>(referenceSize);
    list += bigEndian(offsets_.size(), 8) + bigEndian(topObject, 8) + bigEndian(bytes_.size(), 8);
    return list;
}

std::string BinaryPropertyListWriter::head(unsigned type, std::size_t count) {
    if (count < 0xF) return {static_cast<char>(type << 4U | count)};
    return static_cast<char>(type << 4U | 0xFU) + ("\x13" + bigEndian(count, 8));
}

std::string BinaryPropertyListWriter::bigEndian(std::uint64_t value, std::size_t size) {
    std::string bytes(size, '\0');
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, value >>= 8U) {
        *byte = static_cast<char>(value & 0xFFU);
    }
    return bytes;
}

}  // namespace orvane::test
