#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// The bytes as text: every ill-formed sequence replaced by U+FFFD, one per maximal subpart.
std::string repairedUTF8(std::string_view bytes);

}  // namespace orvane
