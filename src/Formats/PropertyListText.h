#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Models/Date.h"

namespace orvane {

/// How the values of an XML property list are written. Absent for a text that is none; blanks may come before
/// a number, never after it.

/// Decimal, or hexadecimal after "0x"; from the smallest signed to the largest unsigned number of 64 bits.
struct IntegerText {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};
std::optional<IntegerText> integerFromText(std::string_view text);

/// With fraction and exponent; "nan", "inf" and "infinity" in any case.
std::optional<double> realFromText(std::string_view text);

/// "2020-01-02T03:04:05Z", a date that the calendar has.
std::optional<Date> dateFromText(std::string_view text);

/// The bytes that base64 stands for. What is not of its alphabet is passed over.
std::string dataFromText(std::string_view text);

}  // namespace orvane
