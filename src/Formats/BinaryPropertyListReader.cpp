#include <algorithm>
#include <bit>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Formats/PropertyListReaders.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

/// A whole number, its highest byte first; at most eight bytes.
std::uint64_t bigEndianInteger(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

constexpr std::size_t trailerSize = 32;

/// Finds the objects in the bytes of a binary property list. Every offset and length is checked, and objects
/// cannot overlap: together they give out no more bytes than there are. Refers to the bytes that it was
/// given.
class BinaryObjectTable {
  public:
    static constexpr std::string_view signature = "bplist00";

    enum class Type : std::uint8_t {
        constant = 0x0,
        integer = 0x1,
        real = 0x2,
        date = 0x3,
        data = 0x4,
        text = 0x5,
        utf16Text = 0x6,
        uid = 0x8,
        array = 0xA,
        dictionary = 0xD,
    };

    struct Object {
        Type type = Type::constant;
        /// The four bits beside the type: which constant, or the binary logarithm of a number's size.
        unsigned detail = 0;
        /// What follows the head: a number's bytes, a text's letters, a container's references.
        std::string_view payload;
    };

    /// Absent when the bytes do not end in a trailer that fits them.
    static std::optional<BinaryObjectTable> open(std::string_view bytes);

    /// The number of objects, at most PropertyListLimits::objects, and the one that is the list.
    std::size_t count() const { return count_; }
    std::size_t topObject() const { return topObject_; }

    /// The next object to be read, each at most once; absent for one that is none.
    std::optional<Object> take(std::size_t index);

    /// How many references a container's payload holds, and one of them; it may be no object's index.
    std::size_t referenceCount(const Object& container) const {
        return container.payload.size() / referenceSize_;
    }
    std::uint64_t reference(const Object& container, std::size_t position) const;

  private:
    BinaryObjectTable() = default;

    std::optional<std::string_view> takeBytes(std::uint64_t count);
    std::optional<std::uint64_t> takeCount(unsigned detail);
    std::optional<std::uint64_t> payloadSize(const Object& object);

    /// From the signature to the offsets.
    std::string_view objects_;
    std::string_view offsets_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t count_ = 0;
    std::size_t topObject_ = 0;
    std::size_t position_ = 0;
    /// Bytes that no object has taken.
    std::size_t remaining_ = 0;
};

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
    if (count > PropertyListLimits::objects || topObject >= count) return std::nullopt;
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

/// The text of the code points that `visit` goes through, each time the same: sized before it is written, for
/// half of such a list can be one text. Absent where they are none.
template <typename Visit>
std::optional<std::string> textOf(const Visit& visit) {
    std::size_t size = 0;
    if (!visit([&](char32_t codePoint) { size += lengthInUTF8(codePoint); })) return std::nullopt;
    std::string text(size, '\0');
    auto* end = text.data();
    visit([&](char32_t codePoint) { end = writeUTF8(end, codePoint); });
    return text;
}

/// Text of one byte a letter. It should be ASCII; a byte that is not is Latin-1 to the Mac, so to us.
std::string textFromLatin1(std::string_view bytes) {
    return *textOf([&](const auto& use) {
        for (const char byte : bytes) use(static_cast<unsigned char>(byte));
        return true;
    });
}

/// Absent when half of a surrogate pair is alone.
std::optional<std::string> textFromUTF16(std::string_view bytes) {
    return textOf([&](const auto& use) {
        std::uint32_t high = 0;
        for (std::size_t i = 0; i < bytes.size(); i += 2) {
            const auto unit = static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i]) << 8U |
                                                         static_cast<unsigned char>(bytes[i + 1]));
            const bool isLow = (unit & 0xFC00U) == 0xDC00;
            if (isLow != (high != 0)) return false;
            if ((unit & 0xFC00U) == 0xD800) {
                high = unit;
            } else if (isLow) {
                use(0x10000 + ((std::exchange(high, 0) & 0x3FFU) << 10U) + (unit & 0x3FFU));
            } else {
                use(unit);
            }
        }
        return high == 0;
    });
}

/// Follows the references from the top object on, with a stack of its own, as often as each is there: the
/// limits bound what few bytes can say many times, and a cycle is deeper than any of them.
class BinaryReader {
  public:
    BinaryReader(BinaryObjectTable table, PropertyListHandler& handler)
        : table_(table), handler_(handler), objects_(table_.count()) {}

    bool read() {
        if (!value(table_.topObject())) return false;
        while (!open_.empty()) {
            if (!step()) return false;
        }
        return true;
    }

  private:
    using Type = BinaryObjectTable::Type;
    using Object = BinaryObjectTable::Object;
    using Leaf = PropertyListHandler::Leaf;

    struct Container {
        Object source;
        /// Its elements or pairs, and how many of them have been met.
        std::size_t count = 0;
        std::size_t met = 0;
    };

    /// Goes on with the innermost open container: to its next value, or to its end.
    bool step() {
        auto& container = open_.back();
        if (container.met == container.count) {
            open_.pop_back();
            handler_.endContainer();
            return true;
        }
        const auto position = container.met++;
        if (container.source.type == Type::array) return value(table_.reference(container.source, position));
        // All keys stand before all values.
        const auto index = table_.reference(container.source, container.count + position);
        return key(table_.reference(container.source, position)) && value(index);
    }

    bool key(std::uint64_t index) {
        const auto* source = meet(index);
        if (source == nullptr || source->type != Type::text) return false;
        handler_.key(source->payload);
        return true;
    }

    bool value(std::uint64_t index) {
        const auto* source = meet(index);
        if (source == nullptr) return false;
        if (source->type == Type::array || source->type == Type::dictionary) return begin(*source);
        const auto leaf = leafOf(*source);
        if (leaf) handler_.leaf(*leaf);
        return leaf.has_value();
    }

    bool begin(const Object& source) {
        const bool isArray = source.type == Type::array;
        const auto references = table_.referenceCount(source);
        open_.push_back({source, isArray ? references : references / 2});
        if (open_.size() > PropertyListLimits::depth) return false;
        if (isArray) {
            handler_.beginArray();
        } else {
            handler_.beginDictionary(PropertyListHandler::Repeated::firstCounts);
        }
        return true;
    }

    /// The object of an index, taken from the bytes when it is met first; of a text the payload is UTF-8.
    const Object* meet(std::uint64_t index) {
        if (index >= objects_.size() || ++met_ > PropertyListLimits::objects) return nullptr;
        auto& object = objects_[index];
        if (object) return &*object;
        object = table_.take(index);
        if (!object || !makeUTF8(*object)) return nullptr;
        return &*object;
    }

    bool makeUTF8(Object& object) {
        if (object.type == Type::text && !isASCII(object.payload)) {
            object.payload = texts_.emplace_back(textFromLatin1(object.payload));
        } else if (object.type == Type::utf16Text) {
            auto text = textFromUTF16(object.payload);
            if (!text) return false;
            object.type = Type::text;
            object.payload = texts_.emplace_back(*std::move(text));
        }
        return true;
    }

    static bool isASCII(std::string_view bytes) {
        return std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte < 0x80; });
    }

    /// Absent for what is none.
    static std::optional<Leaf> leafOf(const Object& source) {
        const auto payload = source.payload;
        const auto other = [](bool isOne) {
            return isOne ? std::optional<Leaf>(PropertyListHandler::Other{}) : std::nullopt;
        };
        switch (source.type) {
            case Type::constant:
                if (source.detail != 0x8 && source.detail != 0x9) return std::nullopt;
                return source.detail == 0x9;
            case Type::integer:
                return integer(payload);
            case Type::real:
                return real(payload);
            case Type::date:
                return other(payload.size() == 8);
            case Type::data:
                return other(true);
            case Type::text:
                return payload;
            case Type::uid:
                return other(payload.size() <= 8);
            default:
                return std::nullopt;
        }
    }

    static std::optional<Leaf> real(std::string_view bytes) {
        const auto bits = bytes.size() <= 8 ? bigEndianInteger(bytes) : 0;
        if (bytes.size() == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (bytes.size() == 8) return std::bit_cast<double>(bits);
        return std::nullopt;
    }

    /// Up to four bytes hold no sign, eight do; sixteen are for what eight bytes without a sign hold.
    static std::optional<Leaf> integer(std::string_view bytes) {
        if (bytes.size() > 16) return std::nullopt;
        const bool isWide = bytes.size() == 16;
        const auto value = static_cast<std::int64_t>(bigEndianInteger(isWide ? bytes.substr(8) : bytes));
        if (!isWide) return value;
        const auto high = bigEndianInteger(bytes.substr(0, 8));
        if (high == 0) return value >= 0 ? Leaf(value) : Leaf(PropertyListHandler::Other{});
        const bool isNegative = high == std::numeric_limits<std::uint64_t>::max() && value < 0;
        return isNegative ? std::optional<Leaf>(value) : std::nullopt;
    }

    BinaryObjectTable table_;
    PropertyListHandler& handler_;
    std::vector<std::optional<Object>> objects_;
    std::size_t met_ = 0;
    std::vector<Container> open_;
    /// The texts that are not as they stand in the bytes.
    std::deque<std::string> texts_;
};

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with(BinaryObjectTable::signature);
}

bool readBinaryPropertyList(std::string_view bytes, PropertyListHandler& handler) {
    const auto table = BinaryObjectTable::open(bytes);
    return table && BinaryReader(*table, handler).read();
}

}  // namespace orvane
