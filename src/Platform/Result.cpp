#include "Platform/Result.h"

#include <cerrno>

namespace orvane {

tl::unexpected<std::error_code> errnoFailure() {
    return tl::unexpected(std::error_code(errno, std::generic_category()));
}

tl::unexpected<std::error_code> failure(std::errc error) {
    return tl::unexpected(std::make_error_code(error));
}

}  // namespace orvane
