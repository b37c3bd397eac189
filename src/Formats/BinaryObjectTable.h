#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane {

/// A whole number, its highest byte first; at most eight bytes.
std::uint64_t bigEndianInteger(std::string_view bytes);

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

    /// The number of objects, at most PropertyList::maximumObjects, and the one that is the list.
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

}  // namespace orvane
