#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "Formats/BinaryObjectTable.h"
#include "Formats/PropertyListReaders.h"

namespace orvane {

namespace {

void appendUTF8(std::string& text, std::uint32_t codePoint) {
    const auto continuation = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80U | (codePoint >> shift & 0x3FU)));
    };
    if (codePoint < 0x80) {
        text.push_back(static_cast<char>(codePoint));
    } else if (codePoint < 0x800) {
        text.push_back(static_cast<char>(0xC0U | codePoint >> 6U));
        continuation(0);
    } else if (codePoint < 0x10000) {
        text.push_back(static_cast<char>(0xE0U | codePoint >> 12U));
        continuation(6);
        continuation(0);
    } else {
        text.push_back(static_cast<char>(0xF0U | codePoint >> 18U));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

/// Text of one byte a letter. It should be ASCII; a byte that is not is Latin-1 to the Mac, so to us.
std::string textFromBytes(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) appendUTF8(text, static_cast<unsigned char>(byte));
    return text;
}

/// Absent when half of a surrogate pair is alone.
std::optional<std::string> textFromUTF16(std::string_view bytes) {
    std::string text;
    std::uint32_t high = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const auto unit = static_cast<std::uint32_t>(bigEndianInteger(bytes.substr(i, 2)));
        const bool isLow = (unit & 0xFC00U) == 0xDC00;
        if (isLow != (high != 0)) return std::nullopt;
        if ((unit & 0xFC00U) == 0xD800) {
            high = unit;
        } else if (isLow) {
            appendUTF8(text, 0x10000 + ((std::exchange(high, 0) & 0x3FFU) << 10U) + (unit & 0x3FFU));
        } else {
            appendUTF8(text, unit);
        }
    }
    if (high != 0) return std::nullopt;
    return text;
}

/// Follows the references from the top object on, with a stack of its own, and makes every object once.
class BinaryReader {
  public:
    explicit BinaryReader(BinaryObjectTable table) : table_(table), objects_(table_.count()) {}

    std::optional<PropertyList> read() {
        if (!begin(table_.topObject())) return std::nullopt;
        while (!open_.empty()) {
            if (!step()) return std::nullopt;
        }
        return objects_[table_.topObject()].list;
    }

  private:
    using Type = BinaryObjectTable::Type;

    struct Object {
        /// Absent as long as it is not made.
        std::optional<PropertyList> list;
        bool isOpen = false;
        /// What a walk would meet: containers on the longest way down, and objects on all ways together.
        std::size_t depth = 0;
        std::size_t total = 1;
    };

    struct Container {
        std::size_t index = 0;
        BinaryObjectTable::Object source;
        /// Its references, a dictionary's keys before its values, and how many have been followed.
        std::size_t count = 0;
        std::size_t followed = 0;
    };

    /// Goes on with the innermost open container: to its next object, or to its end.
    bool step() {
        auto& container = open_.back();
        if (container.followed == container.count) return finish();
        const auto index = table_.reference(container.source, container.followed++);
        // An open container that is referred to from within is a cycle.
        if (index >= objects_.size() || objects_[index].isOpen) return false;
        return objects_[index].list || begin(index);
    }

    /// Makes an object that holds no others; opens one that does.
    bool begin(std::size_t index) {
        const auto source = table_.take(index);
        if (!source) return false;
        if (source->type != Type::array && source->type != Type::dictionary) {
            objects_[index].list = leafObject(*source);
            return objects_[index].list.has_value();
        }
        objects_[index].isOpen = true;
        open_.push_back({index, *source, table_.referenceCount(*source)});
        return true;
    }

    /// Makes the innermost open container; all that it refers to is made.
    bool finish() {
        const auto container = open_.back();
        open_.pop_back();
        auto& object = objects_[container.index];
        object.isOpen = false;
        for (std::size_t i = 0; i < container.count; ++i) {
            object.depth = std::max(object.depth, child(container, i).depth);
            object.total += child(container, i).total;
            if (object.total > PropertyList::maximumObjects) return false;
        }
        if (++object.depth > PropertyList::maximumDepth) return false;
        object.list =
            container.source.type == Type::array ? arrayObject(container) : dictionaryObject(container);
        return object.list.has_value();
    }

    const Object& child(const Container& container, std::size_t position) const {
        return objects_[table_.reference(container.source, position)];
    }

    std::optional<PropertyList> arrayObject(const Container& container) {
        PropertyList::Array elements;
        elements.reserve(container.count);
        for (std::size_t i = 0; i < container.count; ++i) elements.push_back(*child(container, i).list);
        return builder_.object(std::move(elements));
    }

    std::optional<PropertyList> dictionaryObject(const Container& container) {
        PropertyList::Dictionary entries;
        const auto pairs = container.count / 2;
        for (std::size_t i = 0; i < pairs; ++i) {
            const auto* key = child(container, i).list->string();
            if (key == nullptr) return std::nullopt;
            // Of a key that is there twice the first value counts.
            entries.try_emplace(*key, *child(container, pairs + i).list);
        }
        return builder_.object(std::move(entries));
    }

    std::optional<PropertyList> leafObject(const BinaryObjectTable::Object& source) {
        const auto payload = source.payload;
        switch (source.type) {
            case Type::constant:
                if (source.detail != 0x8 && source.detail != 0x9) return std::nullopt;
                return builder_.object(source.detail == 0x9);
            case Type::integer:
                return integerObject(payload);
            case Type::real:
                return optionalObject(realFromBytes(payload));
            case Type::date:
                if (payload.size() != 8) return std::nullopt;
                return builder_.object(Date{*realFromBytes(payload)});
            case Type::data:
                return builder_.object(PropertyList::Data{std::string(payload)});
            case Type::text:
                return builder_.object(textFromBytes(payload));
            case Type::utf16Text:
                return optionalObject(textFromUTF16(payload));
            case Type::uid:
                if (payload.size() > 8) return std::nullopt;
                return builder_.object(PropertyList::UID{bigEndianInteger(payload)});
            default:
                return std::nullopt;
        }
    }

    static std::optional<double> realFromBytes(std::string_view bytes) {
        const auto bits = bytes.size() <= 8 ? bigEndianInteger(bytes) : 0;
        if (bytes.size() == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (bytes.size() == 8) return std::bit_cast<double>(bits);
        return std::nullopt;
    }

    /// Up to four bytes hold no sign, eight do; sixteen are for what eight bytes without a sign hold.
    std::optional<PropertyList> integerObject(std::string_view bytes) {
        if (bytes.size() > 16) return std::nullopt;
        const bool isWide = bytes.size() == 16;
        const auto low = bigEndianInteger(isWide ? bytes.substr(8) : bytes);
        const auto value = static_cast<std::int64_t>(low);
        if (!isWide) return builder_.object(value);
        const auto high = bigEndianInteger(bytes.substr(0, 8));
        if (high == 0) return value >= 0 ? builder_.object(value) : builder_.object(low);
        const bool isNegative = high == std::numeric_limits<std::uint64_t>::max() && value < 0;
        return isNegative ? builder_.object(value) : std::nullopt;
    }

    template <typename T>
    std::optional<PropertyList> optionalObject(std::optional<T> value) {
        return value ? builder_.object(*std::move(value)) : std::nullopt;
    }

    BinaryObjectTable table_;
    PropertyListBuilder builder_;
    std::vector<Object> objects_;
    std::vector<Container> open_;
};

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with(BinaryObjectTable::signature);
}

std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes) {
    const auto table = BinaryObjectTable::open(bytes);
    return table ? BinaryReader(*table).read() : std::nullopt;
}

}  // namespace orvane
