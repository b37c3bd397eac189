#include "Models/FileSizeFormatter.h"

#include <string_view>

namespace orvane {

namespace {

struct Unit {
    std::string_view name;
    std::uint64_t bytes;
    /// What the last fraction digit that is shown stands for.
    std::uint64_t bytesPerStep;
    unsigned fractionDigits;
};

constexpr std::uint64_t kilo = 1000;
constexpr std::uint64_t mega = kilo * kilo;
constexpr std::uint64_t giga = mega * kilo;
constexpr std::uint64_t tera = giga * kilo;

constexpr Unit units[] = {
    {"TB", tera, tera / 100, 2},
    {"GB", giga, giga / 100, 2},
    {"MB", mega, mega / 10, 1},
    {"KB", kilo, kilo, 0},
};

/// The largest unit of which there is at least one, so that rounding never changes the unit.
const Unit& unitFor(std::uint64_t bytes) {
    for (const auto& unit : units) {
        if (bytes >= unit.bytes) return unit;
    }
    return units[3];
}

/// In whole numbers, because halves go to the even neighbour and doubles cannot tell which ones are halves.
std::uint64_t roundedSteps(std::uint64_t bytes, std::uint64_t bytesPerStep) {
    const auto steps = bytes / bytesPerStep;
    const auto rest = bytes % bytesPerStep;
    const auto half = bytesPerStep / 2;
    const bool roundsUp = rest > half || (rest == half && steps % 2 == 1);
    return roundsUp ? steps + 1 : steps;
}

std::string grouped(std::uint64_t number) {
    auto digits = std::to_string(number);
    for (auto position = digits.size(); position > 3;) {
        position -= 3;
        digits.insert(position, 1, ',');
    }
    return digits;
}

std::string fraction(std::uint64_t steps, unsigned digitCount) {
    std::string digits = std::to_string(steps);
    digits.insert(0, digitCount - digits.size(), '0');
    digits.erase(digits.find_last_not_of('0') + 1);
    return digits;
}

}  // namespace

const FileSizeFormatter& FileSizeFormatter::shared() {
    static const FileSizeFormatter formatter;
    return formatter;
}

std::string FileSizeFormatter::string(std::int64_t byteCount) const {
    if (byteCount == 0) return "Zero KB";
    // Negating as unsigned also holds for the smallest number, which has no positive counterpart.
    const auto bits = static_cast<std::uint64_t>(byteCount);
    const auto magnitude = byteCount < 0 ? 0 - bits : bits;

    const auto& unit = unitFor(magnitude);
    const auto steps = roundedSteps(magnitude, unit.bytesPerStep);
    const auto stepsPerUnit = unit.bytes / unit.bytesPerStep;

    std::string text = byteCount < 0 && steps != 0 ? "-" : "";
    text += grouped(steps / stepsPerUnit);
    if (const auto part = steps % stepsPerUnit; part != 0) text += "." + fraction(part, unit.fractionDigits);
    return text.append(" ").append(unit.name);
}

}  // namespace orvane
