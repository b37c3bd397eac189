#include "Formats/PropertyListText.h"

#include <charconv>
#include <chrono>
#include <limits>

namespace orvane {

namespace {

void skipBlanks(std::string_view& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    text.remove_prefix(first == std::string_view::npos ? text.size() : first);
}

bool skip(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

/// The whole text as a number; from_chars takes no sign of plus.
template <typename Number, typename Format>
std::optional<Number> number(std::string_view text, Format format) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, format);
    if (result.ec != std::errc{} || result.ptr != end) return std::nullopt;
    return value;
}

/// Takes as many digits as asked for.
std::optional<unsigned> digits(std::string_view& text, std::size_t count) {
    const auto value = number<unsigned>(text.substr(0, count), 10);
    if (text.size() < count) return std::nullopt;
    text.remove_prefix(count);
    return value;
}

std::optional<std::chrono::sys_days> calendarDay(std::string_view& text) {
    const auto year = digits(text, 4);
    if (!year || !skip(text, '-')) return std::nullopt;
    const auto month = digits(text, 2);
    if (!month || !skip(text, '-')) return std::nullopt;
    const auto day = digits(text, 2);
    if (!day) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day));
    if (!date.ok()) return std::nullopt;
    return std::chrono::sys_days(date);
}

std::optional<std::chrono::seconds> timeOfDay(std::string_view& text) {
    const auto hour = digits(text, 2);
    if (!hour || *hour > 23 || !skip(text, ':')) return std::nullopt;
    const auto minute = digits(text, 2);
    if (!minute || *minute > 59 || !skip(text, ':')) return std::nullopt;
    const auto second = digits(text, 2);
    if (!second || *second > 60) return std::nullopt;
    return std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second);
}

/// The value of a digit of base64; negative for any other character.
int base64Digit(char character) {
    if (character >= 'A' && character <= 'Z') return character - 'A';
    if (character >= 'a' && character <= 'z') return character - 'a' + 26;
    if (character >= '0' && character <= '9') return character - '0' + 52;
    if (character == '+') return 62;
    return character == '/' ? 63 : -1;
}

}  // namespace

std::optional<IntegerText> integerFromText(std::string_view text) {
    skipBlanks(text);
    const bool isNegative = skip(text, '-');
    if (!isNegative) skip(text, '+');
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) text.remove_prefix(2);
    const auto magnitude = number<std::uint64_t>(text, isHexadecimal ? 16 : 10);
    constexpr std::uint64_t smallest = std::uint64_t{1} << 63;
    if (!magnitude || (isNegative && *magnitude > smallest)) return std::nullopt;
    return IntegerText{isNegative, *magnitude};
}

std::optional<double> realFromText(std::string_view text) {
    skipBlanks(text);
    if (skip(text, '+') && text.starts_with('-')) return std::nullopt;
    return number<double>(text, std::chars_format::general);
}

std::optional<Date> dateFromText(std::string_view text) {
    const auto day = calendarDay(text);
    if (!day || !skip(text, 'T')) return std::nullopt;
    const auto time = timeOfDay(text);
    if (!time || text != "Z") return std::nullopt;
    const auto moment = day->time_since_epoch() + *time;
    return Date::fromUnixTime(static_cast<double>(std::chrono::seconds(moment).count()));
}

std::string dataFromText(std::string_view text) {
    std::string bytes;
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char character : text) {
        if (character == '=') break;
        const int digit = base64Digit(character);
        if (digit < 0) continue;
        pending = pending << 6U | static_cast<std::uint32_t>(digit);
        pendingBits += 6;
        if (pendingBits < 8) continue;
        pendingBits -= 8;
        bytes.push_back(static_cast<char>(pending >> pendingBits & 0xFFU));
    }
    return bytes;
}

}  // namespace orvane
