#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// A name that nobody has guessed, for what is made beside its place and then moved there: `prefix` and 64
/// random bits in hexadecimal digits.
std::string temporaryName(std::string_view prefix);

/// Whether `temporaryName` may have made `name` of this prefix.
bool isTemporaryName(std::string_view name, std::string_view prefix);

}  // namespace orvane
