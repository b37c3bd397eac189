#pragma once

#include <unicode/utf8.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace orvane {

/// Calls `visit` with each code point of valid UTF-8 and its bytes.
template <typename Visit>
void forEachCodePoint(std::string_view text, Visit visit) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t position = 0; position < length;) {
        const auto start = position;
        UChar32 character = 0;
        U8_NEXT(bytes, position, length, character);
        visit(character,
              text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(position - start)));
    }
}

/// Whether a text is nothing but the letters, digits and signs of ASCII, and blanks.
bool isPlainASCII(std::string_view text);

/// Bytes made safe to print: ill-formed UTF-8 replaced, control characters written as escapes, so that a name
/// on a stranger's disk can neither break a line nor command the terminal.
std::string printable(std::string_view bytes);

/// Writes text and flushes. False when it could not all be written (a full disk, a closed pipe).
bool write(std::FILE* stream, std::string_view text);

}  // namespace orvane
