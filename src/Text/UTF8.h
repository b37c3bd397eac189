#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace orvane {

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// The bytes as text: every ill-formed sequence replaced by U+FFFD, one per maximal subpart.
std::string repairedUTF8(std::string_view bytes);

/// How many bytes a code point takes, and writes it where there is room for them; gives back where they end.
constexpr std::size_t lengthInUTF8(char32_t codePoint) {
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}
constexpr char* writeUTF8(char* to, char32_t codePoint) {
    constexpr std::array<char32_t, 5> leads{0, 0, 0xC0, 0xE0, 0xF0};
    const auto length = lengthInUTF8(codePoint);
    for (auto i = length - 1; i > 0; --i, codePoint >>= 6U) {
        to[i] = static_cast<char>(0x80U | (codePoint & 0x3FU));
    }
    to[0] = static_cast<char>(leads[length] | codePoint);
    return to + length;
}

/// A letter of ASCII in its small form; anything else as it is, whatever the locale.
constexpr char lowercasedASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether a text is a word in ASCII that is given in small letters.
bool equalsIgnoringCase(std::string_view text, std::string_view lowercase);

}  // namespace orvane
