#include "Elevation/Support/RootShell.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"

namespace orvane {

namespace {

/// A file in memory that nobody can change any more, this process included, read from its beginning.
Result<FileDescriptor> sealedFile(std::string_view text) {
    FileDescriptor file(::memfd_create("commands", MFD_CLOEXEC | MFD_ALLOW_SEALING));
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

/// Makes the file this process's standard input, whether that was open before or not.
bool becomesStandardInput(FileDescriptor file) {
    if (file.get() != STDIN_FILENO) return ::dup2(file.get(), STDIN_FILENO) == STDIN_FILENO;
    return ::fcntl(file.release(), F_SETFD, 0) == 0;
}

}  // namespace

RootShell RootShell::reachedBy(uid_t effectiveUser) {
    if (effectiveUser == 0) return {{"/bin/sh", "-s"}};
    return {{"/usr/bin/pkexec", "--disable-internal-agent", "/bin/sh", "-s"}};
}

std::error_code becomeRootShell(const RootShell& shell, std::string_view commands) {
    auto file = sealedFile(commands);
    if (!file) return file.error();
    if (!becomesStandardInput(std::move(*file))) return errnoFailure().value();

    std::vector<char*> arguments;
    for (const auto& argument : shell.command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments.front(), arguments.data());
    return errnoFailure().value();
}

}  // namespace orvane
