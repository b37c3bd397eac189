#include "Platform/Posix/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

Result<std::string> fileContents(int file, std::size_t limit) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errnoFailure();
    if (!S_ISREG(status.st_mode)) return failure(std::errc::invalid_argument);
    if (static_cast<std::uintmax_t>(status.st_size) > limit) return failure(std::errc::file_too_large);
    const auto opened = reopen(file, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!opened) return errnoFailure();

    // One byte more than expected tells a file that has grown, or one that does not know its size.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (true) {
        const auto count = ::read(opened.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errnoFailure();
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length > limit) return failure(std::errc::file_too_large);
        if (length == bytes.size()) bytes.resize(std::max<std::size_t>(2 * length, 4096));
    }
    bytes.resize(length);
    return bytes;
}

}  // namespace orvane
