#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "Formats/PropertyList.h"

namespace orvane {

/// Whether the bytes begin as a binary property list does.
bool isBinaryPropertyList(std::string_view bytes);

/// Reads a property list in the binary format; absent for anything that is not one.
std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes);

/// Reads a property list in XML; absent for anything that is not one. The encodings are those of expat:
/// UTF-8, UTF-16 by its byte-order mark, and Latin-1 and ASCII where declared. Nothing outside the bytes is
/// fetched.
std::optional<PropertyList> readXMLPropertyList(std::string_view bytes);

/// Makes the objects of one property list, and no more of them than a list may have. What the readers of the
/// formats share; each list has its own.
class PropertyListBuilder {
  public:
    /// An object that holds a value of one of the types that a list knows; absent once there are too many.
    template <typename T>
    std::optional<PropertyList> object(T value) {
        if (++made_ > PropertyList::maximumObjects) return std::nullopt;
        auto made = std::make_unique<const PropertyList::Value>(std::in_place_type<T>, std::move(value));
        return PropertyList(std::shared_ptr<const PropertyList::Value>(made.release(), destroy));
    }

  private:
    static void destroy(const PropertyList::Value* value);

    std::size_t made_ = 0;
};

}  // namespace orvane
