#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// The bytes as text: every ill-formed sequence replaced by U+FFFD, one per maximal subpart.
std::string repairedUTF8(std::string_view bytes);

/// A letter of ASCII in its small form; anything else as it is, whatever the locale.
constexpr char lowercasedASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether a text is a word in ASCII that is given in small letters.
bool equalsIgnoringCase(std::string_view text, std::string_view lowercase);

}  // namespace orvane
