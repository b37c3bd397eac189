#include "tests/Fixtures/Paths.h"

#include <cstdlib>

namespace orvane::test {
namespace {

std::string fromEnvironment(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

}  // namespace

std::string sourceDirectory() {
    return fromEnvironment("ORVANE_SOURCE_DIR", ORVANE_SOURCE_DIR);
}

std::string binaryDirectory() {
    return fromEnvironment("ORVANE_BINARY_DIR", ORVANE_TEST_BINARIES);
}

}  // namespace orvane::test
