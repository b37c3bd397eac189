#include "Text/UTF8Builder.h"

#include <array>
#include <utility>

#include "Text/UTF8.h"

namespace orvane {

void UTF8Builder::append(char16_t unit) {
    const bool isHigh = (unit & 0xFC00U) == 0xD800;
    const bool isLow = (unit & 0xFC00U) == 0xDC00;
    if (isLow && high_ != 0) {
        const char32_t high = std::exchange(high_, u'\0');
        appendCodePoint(0x10000 + ((high & 0x3FFU) << 10U) + (unit & 0x3FFU));
        return;
    }
    replaceHalf();
    if (isHigh || isLow) {
        high_ = unit;
        if (isLow) replaceHalf();
    } else {
        appendCodePoint(unit);
    }
}

void UTF8Builder::append(std::string_view utf8) {
    if (utf8.empty()) return;
    replaceHalf();
    text_ += utf8;
}

std::string UTF8Builder::take() {
    replaceHalf();
    return std::exchange(text_, {});
}

/// What waits for its other half, which does not come.
void UTF8Builder::replaceHalf() {
    if (std::exchange(high_, u'\0') == 0) return;
    hadLoneSurrogate_ = true;
    appendCodePoint(0xFFFD);
}

void UTF8Builder::appendCodePoint(char32_t codePoint) {
    std::array<char, 4> bytes{};
    text_.append(bytes.data(), writeUTF8(bytes.data(), codePoint));
}

}  // namespace orvane
