#pragma once

#include <system_error>
#include <tl/expected.hpp>

namespace orvane {

/// A value, or the operating system's error.
template <typename T>
using Result = tl::expected<T, std::error_code>;

/// The current errno.
std::error_code currentError();
/// The current errno as the failure of a Result.
tl::unexpected<std::error_code> errnoFailure();
tl::unexpected<std::error_code> failure(std::errc error);

/// Whether all descriptors that the process or the system may have are in use.
bool isShortOfDescriptors(const std::error_code& error);

/// Whether an error tells nothing about the file: this process is short of descriptors or memory, or the disk
/// cannot be read.
bool cannotTell(const std::error_code& error);

}  // namespace orvane
