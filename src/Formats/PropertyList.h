#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Models/Date.h"

namespace orvane {

/// A property list, read from XML or binary bytes of unknown origin. An immutable tree of shared nodes: an
/// object that several parents refer to exists once. Safe to share between threads.
class PropertyList {
  public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList, std::less<>>;
    struct Data {
        std::string bytes;
    };
    /// A reference to another object of a keyed archive.
    struct UID {
        std::uint64_t value = 0;
    };

    static constexpr std::size_t maximumBytes = std::size_t{16} << 20;
    static constexpr std::size_t maximumDepth = 512;
    static constexpr std::size_t maximumObjects = 200'000;

    /// Reads a whole property list. Absent for anything that is not one, or that exceeds the limits above:
    /// nesting deeper than `maximumDepth`, more than `maximumObjects` objects, a cycle, a declared entity.
    /// Time and memory are bounded by the size of the bytes.
    static std::optional<PropertyList> parse(std::string_view bytes);

    const Dictionary* dictionary() const;
    const Array* array() const;
    /// Text, valid UTF-8.
    const std::string* string() const;
    std::optional<bool> boolean() const;
    /// Absent for an integer that is too large for its type, too.
    std::optional<std::int64_t> integer() const;
    std::optional<double> real() const;

    /// The text under a key of a dictionary; absent when this is no dictionary, or the value is not text.
    const std::string* string(std::string_view key) const;

  private:
    friend class PropertyListBuilder;
    using Value = std::variant<std::string, bool, std::int64_t, std::uint64_t, double, Date, Data, UID, Array,
                               Dictionary>;
    explicit PropertyList(std::shared_ptr<const Value> value);

    std::shared_ptr<const Value> value_;
};

}  // namespace orvane
