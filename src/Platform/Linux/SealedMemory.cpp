#include "Platform/Linux/SealedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace orvane {

Result<FileDescriptor> sealedMemory(std::string_view text) {
    FileDescriptor file(::memfd_create("input", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file) return errnoFailure();
    for (std::size_t written = 0; written < text.size();) {
        const auto count =
            ::pwrite(file.get(), text.data() + written, text.size() - written, static_cast<off_t>(written));
        if (count < 0 && errno != EINTR) return errnoFailure();
        if (count > 0) written += static_cast<std::size_t>(count);
    }
    if (::fcntl(file.get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL) != 0) {
        return errnoFailure();
    }
    return file;
}

Result<FileDescriptor> sharedMemory(std::size_t length) {
    FileDescriptor file(::memfd_create("shared", MFD_CLOEXEC));
    if (!file || ::ftruncate(file.get(), static_cast<off_t>(length)) != 0) return errnoFailure();
    return file;
}

Result<std::string> textInMemory(int file, std::size_t limit) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errnoFailure();
    const auto length = static_cast<std::size_t>(status.st_size);
    if (!S_ISREG(status.st_mode) || length > limit) return failure(std::errc::no_such_file_or_directory);
    std::string text(length, '\0');
    for (std::size_t got = 0; got < length;) {
        const auto count = ::pread(file, text.data() + got, length - got, static_cast<off_t>(got));
        if (count == 0) return failure(std::errc::no_such_file_or_directory);
        if (count < 0 && errno != EINTR) return errnoFailure();
        if (count > 0) got += static_cast<std::size_t>(count);
    }
    return text;
}

Result<std::string> readToEnd(int file, std::size_t limit) {
    constexpr std::size_t atOnce = std::size_t{1} << 16U;
    std::string text;
    std::size_t length = 0;
    while (length <= limit) {
        text.resize(std::min(length + atOnce, limit + 1));
        const auto count = ::read(file, text.data() + length, text.size() - length);
        if (count == 0) break;
        if (count < 0 && errno != EINTR) return errnoFailure();
        if (count > 0) length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

}  // namespace orvane
