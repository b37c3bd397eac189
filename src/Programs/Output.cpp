#include "Programs/Output.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "Text/UTF8.h"

namespace orvane {
namespace {

/// Control characters, line separators and the marks that reorder a line.
bool disturbsTheLine(UChar32 character) {
    return u_iscntrl(character) || character == 0x2028 || character == 0x2029 ||
           u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL);
}

}  // namespace

bool isPlainASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

std::string printable(std::string_view bytes) {
    if (isPlainASCII(bytes)) return std::string(bytes);
    std::string result;
    forEachCodePoint(repairedUTF8(bytes), [&](UChar32 character, std::string_view encoded) {
        if (!disturbsTheLine(character)) {
            result += encoded;
        } else if (character == '\n') {
            result += "\\n";
        } else if (character == '\t') {
            result += "\\t";
        } else {
            std::array<char, 16> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u{%X}", static_cast<unsigned>(character));
            result += escape.data();
        }
    });
    return result;
}

bool write(std::FILE* stream, std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

}  // namespace orvane
