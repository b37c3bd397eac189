#include "Models/FileSize.h"

#include "Models/FatalError.h"

namespace orvane {

std::int64_t sumOfSizes(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) fatalError("a sum of file sizes exceeds 64 bits");
    return sum;
}

}  // namespace orvane
