#include "Text/UTF8Builder.h"

#include <utility>

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
    const auto continuation = [&](unsigned shift) {
        text_.push_back(static_cast<char>(0x80U | (codePoint >> shift & 0x3FU)));
    };
    if (codePoint < 0x80) {
        text_.push_back(static_cast<char>(codePoint));
    } else if (codePoint < 0x800) {
        text_.push_back(static_cast<char>(0xC0U | codePoint >> 6U));
        continuation(0);
    } else if (codePoint < 0x10000) {
        text_.push_back(static_cast<char>(0xE0U | codePoint >> 12U));
        continuation(6);
        continuation(0);
    } else {
        text_.push_back(static_cast<char>(0xF0U | codePoint >> 18U));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace orvane
