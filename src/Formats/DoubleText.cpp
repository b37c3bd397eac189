#include "Formats/DoubleText.h"

#include <cmath>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>

#include "Text/UTF8.h"

namespace orvane {

namespace {

template <typename Double>
std::from_chars_result parsed(const char* begin, const char* end, Double& value) {
    if constexpr (requires { std::from_chars(begin, end, value); }) {
        return std::from_chars(begin, end, value);
    } else {
        return doubleFromStream({begin, end}, value);
    }
}

bool isZero(std::string_view text) {
    const auto mantissa = text.substr(0, text.find_first_of("eE"));
    return mantissa.find_first_of("123456789") == std::string_view::npos;
}

/// What no stream reads.
std::optional<double> infiniteOrNone(std::string_view text) {
    const double sign = text.starts_with('-') ? -1 : 1;
    if (sign < 0) text.remove_prefix(1);
    if (equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity")) {
        return std::copysign(std::numeric_limits<double>::infinity(), sign);
    }
    if (equalsIgnoringCase(text, "nan")) {
        return std::copysign(std::numeric_limits<double>::quiet_NaN(), sign);
    }
    return std::nullopt;
}

}  // namespace

std::from_chars_result doubleFromChars(const char* begin, const char* end, double& value) {
    return parsed(begin, end, value);
}

std::from_chars_result doubleFromStream(std::string_view text, double& value) {
    const auto* const begin = text.data();
    if (const auto special = infiniteOrNone(text)) {
        value = *special;
        return {begin + text.size(), std::errc()};
    }
    // A stream takes a sign of plus, space and other notations, too.
    const auto unsignedText = text.substr(text.starts_with('-') ? 1 : 0);
    constexpr std::string_view digits = "0123456789";
    const bool isNumber = unsignedText.find_first_not_of("0123456789.eE+-") == std::string_view::npos &&
                          (unsignedText.starts_with('.') || unsignedText.find_first_of(digits) == 0) &&
                          (unsignedText.ends_with('.') || digits.find(unsignedText.back()) != digits.npos);
    if (!isNumber) return {begin, std::errc::invalid_argument};
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double number = std::numeric_limits<double>::quiet_NaN();
    stream >> number;
    const bool isWhole = stream.eof();
    // Too large is told by the stream with the largest value or none, too small with zero.
    const bool isTooLarge = std::abs(number) >= std::numeric_limits<double>::max() && stream.fail();
    if (isWhole && (isTooLarge || (number == 0 && !isZero(text)))) {
        return {begin + text.size(), std::errc::result_out_of_range};
    }
    // Some say of the smallest numbers that they failed, and give them all the same.
    const bool isDenormal = number != 0 && std::abs(number) < std::numeric_limits<double>::min();
    if (!isWhole || std::isnan(number) || (stream.fail() && !isDenormal)) {
        return {begin, std::errc::invalid_argument};
    }
    value = number;
    return {begin + text.size(), std::errc()};
}

}  // namespace orvane
