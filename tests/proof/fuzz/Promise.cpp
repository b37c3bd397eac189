#include <cstdio>
#include <cstdlib>

#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

void promise(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

}  // namespace orvane::test
