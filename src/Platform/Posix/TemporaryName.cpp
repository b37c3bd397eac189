#include "Platform/Posix/TemporaryName.h"

#include <cstdint>
#include <random>

namespace orvane {

namespace {

constexpr std::string_view hexadecimalDigits = "0123456789abcdef";
constexpr std::size_t randomDigits = 16;

}  // namespace

std::string temporaryName(std::string_view prefix) {
    std::random_device device;
    const auto number = (std::uint64_t{device()} << 32) | device();
    std::string name(prefix);
    for (std::size_t digit = 0; digit < randomDigits; ++digit)
        name += hexadecimalDigits[(number >> (4 * digit)) & 0xF];
    return name;
}

bool isTemporaryName(std::string_view name, std::string_view prefix) {
    return name.size() == prefix.size() + randomDigits && name.starts_with(prefix) &&
           name.find_first_not_of(hexadecimalDigits, prefix.size()) == std::string_view::npos;
}

}  // namespace orvane
