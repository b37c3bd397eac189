#pragma once

#include <string_view>

#include "Formats/PropertyList.h"

namespace orvane {

/// The formats of property lists, a reader each. What false means says `readPropertyList`.

/// Whether the bytes begin as a binary property list does.
bool isBinaryPropertyList(std::string_view bytes);
bool readBinaryPropertyList(std::string_view bytes, PropertyListHandler& handler);

/// The encodings are those of expat: UTF-8, UTF-16 by its byte-order mark, and Latin-1 and ASCII where
/// declared. Nothing outside the bytes is fetched.
bool readXMLPropertyList(std::string_view bytes, PropertyListHandler& handler);

}  // namespace orvane
