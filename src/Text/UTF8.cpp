#include "Text/UTF8.h"

#include <algorithm>
#include <cstddef>

namespace orvane {

namespace {

struct Sequence {
    /// Bytes that belong together: a character, or the longest beginning of one.
    std::size_t length = 1;
    bool isWellFormed = false;
};

/// What a first byte asks of the bytes after it. The second byte's range is narrower than that of the others
/// where it must keep out overlong forms, surrogates and what lies above U+10FFFF.
struct Lead {
    std::size_t length = 0;
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80) return {1};
    if (byte >= 0xC2 && byte <= 0xDF) return {2};
    if (byte == 0xE0) return {3, 0xA0, 0xBF};
    if (byte == 0xED) return {3, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {3};
    if (byte == 0xF0) return {4, 0x90, 0xBF};
    if (byte >= 0xF1 && byte <= 0xF3) return {4};
    if (byte == 0xF4) return {4, 0x80, 0x8F};
    return {};
}

Sequence firstSequence(std::string_view bytes) {
    const auto lead = leadOf(static_cast<unsigned char>(bytes[0]));
    if (lead.length == 0) return {};
    std::size_t length = 1;
    while (length < lead.length && length < bytes.size()) {
        const auto byte = static_cast<unsigned char>(bytes[length]);
        const auto low = length == 1 ? lead.secondLow : 0x80;
        const auto high = length == 1 ? lead.secondHigh : 0xBF;
        if (byte < low || byte > high) break;
        ++length;
    }
    return {length, length == lead.length};
}

}  // namespace

bool isValidUTF8(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sequence = firstSequence(bytes);
        if (!sequence.isWellFormed) return false;
        bytes.remove_prefix(sequence.length);
    }
    return true;
}

std::string repairedUTF8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto sequence = firstSequence(bytes);
        text += sequence.isWellFormed ? bytes.substr(0, sequence.length) : "\uFFFD";
        bytes.remove_prefix(sequence.length);
    }
    return text;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
    return std::equal(text.begin(), text.end(), lowercase.begin(), lowercase.end(),
                      [](char a, char b) { return lowercasedASCII(a) == b; });
}

}  // namespace orvane
