#include "Services/FatalError.h"

#include <cstdio>
#include <cstdlib>

namespace orvane {

void fatalError(std::string_view message) {
    std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
    std::abort();
}

}  // namespace orvane
