#pragma once

#include <string>

namespace orvane::test {

/// The project's folder, or the copy of it that ORVANE_SOURCE_DIR names.
std::string sourceDirectory();

/// Where the built programs are, or the copy that ORVANE_BINARY_DIR names.
std::string binaryDirectory();

}  // namespace orvane::test
