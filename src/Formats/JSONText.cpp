#include "Formats/JSONText.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "Text/UTF8.h"

namespace orvane {

using nlohmann::ordered_json;

namespace {

std::string plainText(const ordered_json& value) {
    return value.dump();
}

void appendString(std::string& text, const std::string& value) {
    for (const char c : plainText(repairedUTF8(value))) {
        if (c == '/') text += '\\';
        text += c;
    }
}

bool appendNumber(std::string& text, double value) {
    if (!std::isfinite(value)) return false;
    const auto magnitude = std::abs(value);
    // Where the Mac's own number text changes to an exponent: below 0.0001, and above the whole numbers that
    // a double holds without gaps.
    const bool hasExponent = magnitude != 0 && (magnitude < 1e-4 || magnitude > 0x1p53);
    char buffer[32];
    const auto format = hasExponent ? std::chars_format::scientific : std::chars_format::fixed;
    text.append(buffer, std::to_chars(buffer, std::end(buffer), value, format).ptr);
    return true;
}

bool append(std::string& text, const ordered_json& value) {
    if (value.is_string()) {
        appendString(text, value.get_ref<const std::string&>());
        return true;
    }
    if (value.is_number_float()) return appendNumber(text, value.get<double>());
    if (!value.is_structured()) {
        text += plainText(value);
        return true;
    }
    text += value.is_object() ? '{' : '[';
    bool isFirst = true;
    for (const auto& [key, element] : value.items()) {
        if (!isFirst) text += ',';
        isFirst = false;
        if (value.is_object()) {
            appendString(text, key);
            text += ':';
        }
        if (!append(text, element)) return false;
    }
    text += value.is_object() ? '}' : ']';
    return true;
}

}  // namespace

std::optional<std::string> jsonText(const ordered_json& value) {
    std::string text;
    if (!append(text, value)) return std::nullopt;
    return text;
}

}  // namespace orvane
