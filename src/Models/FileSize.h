#pragma once

#include <cstdint>

namespace orvane {

/// The sum of two byte counts. One that does not fit ends the program.
std::int64_t sumOfSizes(std::int64_t a, std::int64_t b);

}  // namespace orvane
