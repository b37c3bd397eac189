#pragma once

#include <cstddef>
#include <string>

#include "Platform/Result.h"

namespace orvane {

/// The bytes of the regular file that a descriptor opened with O_PATH stands for. EFBIG when there are more
/// than `limit`, EINVAL for what is no regular file: a device or a FIFO is not even opened.
Result<std::string> fileContents(int file, std::size_t limit);

}  // namespace orvane
