#include "Formats/CatalogReader.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace orvane {

namespace {

constexpr std::size_t listDepth = 1;
constexpr std::size_t recordDepth = 2;
constexpr std::size_t maximumDepth = 512;

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
    if (number != nullptr) target = Date{number->value};
    return number != nullptr;
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

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The digits of a number, and the power of ten by which they are to be multiplied.
struct Decimal {
    std::string digits;
    std::int64_t exponent = 0;
};

/// One that does not fit counts as the largest of its sign that can still be added to.
std::int64_t exponentOf(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    constexpr auto largest = std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::result_out_of_range) return text.starts_with('-') ? -largest : largest;
    return exponent;
}

Decimal decimal(std::string_view text) {
    Decimal result;
    bool isFraction = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isDigit(text[i])) {
            result.digits += text[i];
            if (isFraction) --result.exponent;
        } else if (text[i] == 'e' || text[i] == 'E') {
            result.exponent += exponentOf(text.substr(i + 1));
            break;
        } else if (text[i] != '-') {
            isFraction = true;
        }
    }
    const auto significant = result.digits.find_last_not_of('0') + 1;
    result.exponent += static_cast<std::int64_t>(result.digits.size() - significant);
    result.digits.resize(significant);
    result.digits.erase(0, result.digits.find_first_not_of('0'));
    return result;
}

}  // namespace

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

bool exceedsDouble(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc::result_out_of_range || end != text.data() + text.size()) return false;
    // A number too close to zero is out of range as well.
    const auto [digits, exponent] = decimal(text);
    return static_cast<std::int64_t>(digits.size()) + exponent > 0;
}

bool CatalogReader::number_integer(std::int64_t value) {
    return scalar(JSONNumber{static_cast<double>(value), value});
}

bool CatalogReader::number_unsigned(std::uint64_t value) {
    JSONNumber number{static_cast<double>(value), std::nullopt};
    if (value <= std::numeric_limits<std::int64_t>::max()) number.integer = static_cast<std::int64_t>(value);
    return scalar(number);
}

bool CatalogReader::number_float(double value, const std::string& text) {
    return scalar(JSONNumber{value, exactInteger(value, text)});
}

bool CatalogReader::scalar(const Scalar& value) {
    if (depth_ < recordDepth) return false;
    if (depth_ > recordDepth) return true;
    switch (field_) {
        case url:
            return assign(record_.url, value);
        case name:
            return assign(record_.name, value);
        case version:
            return assign(record_.version, value);
        case size:
            return assign(record_.size, value);
        case isSystemApplication:
            return assign(record_.isSystemApplication, value);
        case isInstalled:
            return assign(record_.isInstalled, value);
        case bundleIdentifier:
            return assign(record_.bundleIdentifier, value);
        case modifiedAt:
            return assign(record_.modifiedAt, value);
        case ignored:
            return true;
    }
    return false;
}

bool CatalogReader::enter() {
    if (depth_ == recordDepth && field_ != ignored) return false;
    return ++depth_ <= maximumDepth;
}

bool CatalogReader::start_object(std::size_t) {
    if (depth_ < listDepth) return false;
    if (depth_ == listDepth) {
        record_ = {};
        seen_.reset();
    }
    return enter();
}

bool CatalogReader::key(const std::string& memberName) {
    if (depth_ != recordDepth) return true;
    static constexpr std::array<std::string_view, ignored> names{
        "url",       "name", "version", "size", "isSystemApplication", "isInstalled", "bundleIdentifier",
        "modifiedAt"};
    field_ = ignored;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] != memberName || seen_[i]) continue;
        field_ = static_cast<Field>(i);
        seen_.set(i);
    }
    return true;
}

bool CatalogReader::end_object() {
    if (--depth_ != listDepth) return true;
    for (std::size_t i = 0; i < requiredFields; ++i) {
        if (!seen_[i]) return false;
    }
    records_.push_back(std::move(record_));
    return true;
}

bool CatalogReader::start_array(std::size_t) {
    return depth_ != listDepth && enter();
}

bool CatalogReader::end_array() {
    --depth_;
    return true;
}

}  // namespace orvane
