#include "Models/FatalError.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace orvane {
namespace {

[[noreturn]] void endClearly() {
    try {
        if (const auto error = std::current_exception()) std::rethrow_exception(error);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "Fatal error: %s\n", error.what());
        std::_Exit(EXIT_FAILURE);
    } catch (...) {
        // Not ours: it ends as what nothing explains.
    }
    std::abort();
}

}  // namespace

void fatalError(std::string_view message) {
    std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
    std::abort();
}

void endClearlyOnUncaughtErrors() {
    std::set_terminate(endClearly);
}

}  // namespace orvane
