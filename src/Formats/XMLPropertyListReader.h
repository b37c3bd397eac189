#pragma once

#include <optional>
#include <string_view>

#include "Formats/PropertyList.h"

namespace orvane {

/// Reads a property list in XML; absent for anything that is not one. The encodings are those of expat:
/// UTF-8, UTF-16 by its byte-order mark, and Latin-1 and ASCII where declared. Nothing outside the bytes is
/// fetched.
std::optional<PropertyList> readXMLPropertyList(std::string_view bytes);

}  // namespace orvane
