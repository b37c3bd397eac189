#pragma once

#include <optional>
#include <string_view>

#include "Formats/PropertyList.h"

namespace orvane {

/// Whether the bytes begin as a binary property list does.
bool isBinaryPropertyList(std::string_view bytes);

/// Reads a property list in the binary format; absent for anything that is not one.
std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes);

}  // namespace orvane
