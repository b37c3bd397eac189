#include "Platform/Result.h"

#include <cerrno>

namespace orvane {

std::error_code currentError() {
    return {errno, std::generic_category()};
}

tl::unexpected<std::error_code> errnoFailure() {
    return tl::unexpected(currentError());
}

tl::unexpected<std::error_code> failure(std::errc error) {
    return tl::unexpected(std::make_error_code(error));
}

bool isShortOfDescriptors(const std::error_code& error) {
    return error == std::errc::too_many_files_open || error == std::errc::too_many_files_open_in_system;
}

bool cannotTell(const std::error_code& error) {
    return isShortOfDescriptors(error) || error == std::errc::not_enough_memory ||
           error == std::errc::resource_unavailable_try_again || error == std::errc::io_error;
}

}  // namespace orvane
