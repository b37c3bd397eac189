#pragma once

#include <charconv>
#include <string_view>

namespace orvane {

/// What `std::from_chars` does with a double in decimal notation, which not every system's standard library
/// has for doubles. The value stays as it is where the text holds none, or one out of the range of doubles.
std::from_chars_result doubleFromChars(const char* begin, const char* end, double& value);

/// The same by a stream, of a text that is a number from its beginning to its end. What those libraries use
/// that have no other way.
std::from_chars_result doubleFromStream(std::string_view text, double& value);

}  // namespace orvane
