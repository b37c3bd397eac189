#include "Formats/CatalogCoding.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <variant>

#include "Formats/DoubleText.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

namespace ondemand = simdjson::ondemand;

/// A number of a JSON text.
struct JSONNumber {
    /// Absent where it is too large for a double.
    std::optional<double> value;
    /// Its value as an integer; absent where it is none.
    std::optional<std::int64_t> integer;
};

bool takeOneOf(std::string_view& text, std::string_view characters) {
    const bool isThere = !text.empty() && characters.find(text.front()) != std::string_view::npos;
    if (isThere) text.remove_prefix(1);
    return isThere;
}

bool takeDigits(std::string_view& text) {
    const auto count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count > 0;
}

bool isNumber(std::string_view text) {
    takeOneOf(text, "-");
    if (!takeOneOf(text, "0") && !takeDigits(text)) return false;
    if (takeOneOf(text, ".") && !takeDigits(text)) return false;
    if (takeOneOf(text, "eE")) {
        takeOneOf(text, "+-");
        if (!takeDigits(text)) return false;
    }
    return text.empty();
}

/// The digits of a number without zeros around them, and the power of ten by which they are to be multiplied.
struct Decimal {
    std::string digits;
    std::int64_t exponent = 0;
};

/// One that is too large counts as the largest of its sign, to which the number of digits can still be added.
std::int64_t exponentOf(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    constexpr auto largest = std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::result_out_of_range) return text.starts_with('-') ? -largest : largest;
    return std::clamp(exponent, -largest, largest);
}

Decimal decimal(std::string_view number) {
    Decimal result;
    bool isFraction = false;
    for (std::size_t i = 0; i < number.size(); ++i) {
        if (number[i] == 'e' || number[i] == 'E') {
            result.exponent += exponentOf(number.substr(i + 1));
            break;
        }
        if (number[i] == '.') {
            isFraction = true;
        } else if (number[i] != '-') {
            result.digits += number[i];
            if (isFraction) --result.exponent;
        }
    }
    const auto significant = result.digits.find_last_not_of('0') + 1;
    result.exponent += static_cast<std::int64_t>(result.digits.size() - significant);
    result.digits.resize(significant);
    result.digits.erase(0, result.digits.find_first_not_of('0'));
    return result;
}

/// The integer that a number's text in any notation stands for. `value` is the same number as a double.
std::optional<std::int64_t> exactInteger(double value, std::string_view text) {
    if (!(value >= -0x1p63 && value < 0x1p63) || value != std::trunc(value)) return std::nullopt;
    if (std::abs(value) < 0x1p53) return static_cast<std::int64_t>(value);

    // From here on doubles have gaps, and one of them can stand for a neighbour of what was written.
    auto [digits, exponent] = decimal(text);
    constexpr std::int64_t mostDigits = std::numeric_limits<std::int64_t>::digits10 + 1;
    if (exponent < 0 || exponent > mostDigits) return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    if (value < 0) digits.insert(0, 1, '-');
    std::int64_t integer = 0;
    const auto end = digits.data() + digits.size();
    const auto [parsed, error] = std::from_chars(digits.data(), end, integer);
    if (error != std::errc() || parsed != end) return std::nullopt;
    return integer;
}

std::optional<JSONNumber> readNumber(std::string_view text) {
    if (!isNumber(text)) return std::nullopt;
    const auto end = text.data() + text.size();
    std::int64_t integer = 0;
    if (const auto [parsed, error] = std::from_chars(text.data(), end, integer);
        error == std::errc() && parsed == end) {
        const bool isNegativeZero = integer == 0 && text.starts_with('-');
        return JSONNumber{isNegativeZero ? -0.0 : static_cast<double>(integer), integer};
    }
    double value = 0;
    if (doubleFromChars(text.data(), end, value).ec == std::errc::result_out_of_range) {
        const auto [digits, exponent] = decimal(text);
        if (static_cast<std::int64_t>(digits.size()) + exponent > 0) return JSONNumber{};
        value = text.starts_with('-') ? -0.0 : 0.0;
    }
    return JSONNumber{value, exactInteger(value, text)};
}

using Scalar = std::variant<std::nullptr_t, bool, JSONNumber, std::string_view>;

bool assign(std::string& target, const Scalar& value) {
    const auto* text = std::get_if<std::string_view>(&value);
    if (text != nullptr) target = *text;
    return text != nullptr;
}

bool assign(FileURL& target, const Scalar& value) {
    const auto* text = std::get_if<std::string_view>(&value);
    if (text == nullptr) return false;
    auto url = FileURL::fromString(*text);
    if (url) target = std::move(*url);
    return url.has_value();
}

bool assign(std::int64_t& target, const Scalar& value) {
    const auto* number = std::get_if<JSONNumber>(&value);
    if (number == nullptr || !number->integer) return false;
    target = *number->integer;
    return true;
}

bool assign(Date& target, const Scalar& value) {
    const auto* number = std::get_if<JSONNumber>(&value);
    if (number == nullptr || !number->value) return false;
    target = Date{*number->value};
    return true;
}

bool assign(bool& target, const Scalar& value) {
    const auto* boolean = std::get_if<bool>(&value);
    if (boolean != nullptr) target = *boolean;
    return boolean != nullptr;
}

template <typename T>
bool assign(std::optional<T>& target, const Scalar& value) {
    if (std::holds_alternative<std::nullptr_t>(value)) return true;
    return assign(target.emplace(), value);
}

/// Absent for anything else, and for what is malformed. A text is valid as long as the parser.
std::optional<Scalar> readScalar(ondemand::value& value) {
    std::string_view token = value.raw_json_token();
    if (token.starts_with('"')) {
        std::string_view text;
        if (value.get_string().get(text) != simdjson::SUCCESS) return std::nullopt;
        return text;
    }
    token = token.substr(0, token.find_last_not_of(" \t\r\n") + 1);
    if (token == "null") return nullptr;
    if (token == "true") return true;
    if (token == "false") return false;
    return readNumber(token);
}

/// Whether a value that nobody asks for is well-formed, too, and nests no deeper than the Mac reads. `depth`
/// is how many arrays and objects are open around it.
bool isSound(ondemand::value value, std::size_t depth) {
    constexpr std::size_t maximumDepth = 512;
    ondemand::json_type type{};
    if (value.type().get(type) != simdjson::SUCCESS) return false;
    if (type == ondemand::json_type::array) {
        ondemand::array elements;
        if (depth == maximumDepth || value.get_array().get(elements) != simdjson::SUCCESS) return false;
        for (auto element : elements) {
            ondemand::value each;
            if (element.get(each) != simdjson::SUCCESS || !isSound(each, depth + 1)) return false;
        }
        return true;
    }
    if (type == ondemand::json_type::object) {
        ondemand::object members;
        if (depth == maximumDepth || value.get_object().get(members) != simdjson::SUCCESS) return false;
        for (auto member : members) {
            ondemand::value each;
            if (member.unescaped_key().error() != simdjson::SUCCESS ||
                member.value().get(each) != simdjson::SUCCESS || !isSound(each, depth + 1)) {
                return false;
            }
        }
        return true;
    }
    return readScalar(value).has_value();
}

constexpr std::size_t recordDepth = 2;

/// The members of a record that are read; those that have to be there come first.
struct Member {
    enum Index : std::size_t {
        url,
        name,
        version,
        size,
        isSystemApplication,
        isInstalled,
        bundleIdentifier,
        modifiedAt,
        count,
    };
    static constexpr std::size_t requiredCount = bundleIdentifier;
    static constexpr std::array<std::string_view, count> names{
        "url",       "name", "version", "size", "isSystemApplication", "isInstalled", "bundleIdentifier",
        "modifiedAt"};
};

bool assign(InstalledApplication& record, std::size_t member, const Scalar& value) {
    switch (member) {
        case Member::url:
            return assign(record.url, value);
        case Member::name:
            return assign(record.name, value);
        case Member::version:
            return assign(record.version, value);
        case Member::size:
            return assign(record.size, value);
        case Member::isSystemApplication:
            return assign(record.isSystemApplication, value);
        case Member::isInstalled:
            return assign(record.isInstalled, value);
        case Member::bundleIdentifier:
            return assign(record.bundleIdentifier, value);
        case Member::modifiedAt:
            return assign(record.modifiedAt, value);
        default:
            return false;
    }
}

bool readRecord(ondemand::object members, InstalledApplication& record) {
    std::bitset<Member::count> seen;
    for (auto member : members) {
        std::string_view key;
        ondemand::value value;
        if (member.unescaped_key().get(key) != simdjson::SUCCESS) return false;
        if (member.value().get(value) != simdjson::SUCCESS) return false;
        const auto found = std::find(Member::names.begin(), Member::names.end(), key);
        const auto index = static_cast<std::size_t>(found - Member::names.begin());
        if (index == Member::count || seen[index]) {
            if (!isSound(value, recordDepth)) return false;
            continue;
        }
        seen.set(index);
        const auto scalar = readScalar(value);
        if (!scalar || !assign(record, index, *scalar)) return false;
    }
    for (std::size_t index = 0; index < Member::requiredCount; ++index) {
        if (!seen[index]) return false;
    }
    return true;
}

void append(std::string& text, const std::string& value) {
    static constexpr std::string_view shortEscapes = "\b\f\n\r\t";
    static constexpr std::string_view shortEscapeLetters = "bfnrt";
    static constexpr std::string_view hexDigits = "0123456789abcdef";
    text += '"';
    const auto isPlain = [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\' && c != '/';
    };
    for (auto from = value.begin(); from != value.end(); ++from) {
        const auto plainEnd = std::find_if_not(from, value.end(), isPlain);
        text.append(from, plainEnd);
        from = plainEnd;
        if (from == value.end()) break;
        const char c = *from;
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x20) {
            text += '\\';
            text += c;
        } else if (const auto index = shortEscapes.find(c); index != std::string_view::npos) {
            text += '\\';
            text += shortEscapeLetters[index];
        } else {
            text += "\\u00";
            text += hexDigits[code >> 4U];
            text += hexDigits[code & 0xFU];
        }
    }
    text += '"';
}

void append(std::string& text, std::int64_t value) {
    text += std::to_string(value);
}

void append(std::string& text, bool value) {
    text += value ? "true" : "false";
}

void append(std::string& text, double value) {
    const auto magnitude = std::abs(value);
    // Where the Mac's own number text changes to an exponent: below 0.0001, and above the whole numbers that
    // a double holds without gaps.
    const bool hasExponent = magnitude != 0 && (magnitude < 1e-4 || magnitude > 0x1p53);
    char buffer[32];
    const auto format = hasExponent ? std::chars_format::scientific : std::chars_format::fixed;
    text.append(buffer, std::to_chars(buffer, std::end(buffer), value, format).ptr);
}

}  // namespace

std::optional<std::vector<InstalledApplication>> decodeCatalog(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\uFEFF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());

    // The parser judges what it is asked for and no more: every value is asked for below.
    const simdjson::padded_string padded(bytes);
    ondemand::parser parser;
    ondemand::document document;
    ondemand::array elements;
    if (parser.iterate(padded).get(document) != simdjson::SUCCESS) return std::nullopt;
    if (document.get_array().get(elements) != simdjson::SUCCESS) return std::nullopt;
    std::vector<InstalledApplication> records;
    // About what a record of ours takes: most lists need no second place in memory.
    constexpr std::size_t bytesOfARecord = 192;
    records.reserve(bytes.size() / bytesOfARecord);
    for (auto element : elements) {
        ondemand::object members;
        if (element.get_object().get(members) != simdjson::SUCCESS) return std::nullopt;
        if (!readRecord(members, records.emplace_back())) return std::nullopt;
    }
    const bool isAtEnd = document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    if (!isAtEnd) return std::nullopt;
    return records;
}

std::optional<std::string> encodeCatalog(const std::vector<InstalledApplication>& applications) {
    std::string text = "[";
    constexpr std::size_t bytesOfARecord = 256;
    text.reserve(applications.size() * bytesOfARecord);
    for (const auto& application : applications) {
        const auto& date = application.modifiedAt;
        if (date && !std::isfinite(date->timeIntervalSinceReferenceDate)) return std::nullopt;
        text += text.ends_with('}') ? ",{" : "{";
        forEachCatalogMember(application, [&](std::string_view member, const auto& value) {
            if (!text.ends_with('{')) text += ',';
            text.append("\"").append(member).append("\":");
            append(text, value);
        });
        text += '}';
    }
    text += ']';
    // A broken sequence ends before the next quote at the latest: to repair the whole is to repair each text.
    if (!simdjson::validate_utf8(text)) text = repairedUTF8(text);
    return text;
}

}  // namespace orvane
