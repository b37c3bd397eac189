#include "Programs/Elevation/RootShell.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"
#include "Programs/Elevation/RootOwned.h"

namespace orvane {

namespace {

/// A file in memory that nobody can change any more, this process included, read from its beginning.
Result<FileDescriptor> sealedFile(std::string_view text) {
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

/// Makes the file this process's standard input, whether that was open before or not.
bool becomesStandardInput(FileDescriptor file) {
    if (file.get() != STDIN_FILENO) return ::dup2(file.get(), STDIN_FILENO) == STDIN_FILENO;
    return ::fcntl(file.release(), F_SETFD, 0) == 0;
}

/// Whether pkexec lets a variable of that value through, instead of refusing everything because of it.
bool isHarmless(std::string_view value) {
    return value.find_first_of("/%") == std::string_view::npos && value.find("..") == std::string_view::npos;
}

}  // namespace

RootShell RootShell::reachedBy(uid_t effectiveUser, const std::string& rootPart) {
    if (effectiveUser == 0) return {{"/bin/sh", "-s"}};
    const std::vector<std::string> prompt{"/usr/bin/pkexec", "--disable-internal-agent"};
    if (isRootsOwnProgram(rootPart)) return {{prompt[0], prompt[1], rootPart}, true};
    return {{prompt[0], prompt[1], "/bin/sh", "-s"}};
}

std::string RootShell::installedRootPart() {
    return ORVANE_ROOT_PART;
}

std::error_code becomeRootShell(const RootShell& shell, std::string_view input) {
    auto file = sealedFile(input);
    if (!file) return file.error();
    if (!becomesStandardInput(std::move(*file))) return errnoFailure().value();

    std::vector<char*> arguments;
    for (const auto& argument : shell.command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments.front(), arguments.data());
    return errnoFailure().value();
}

void leaveSurroundingsBehind() {
    std::vector<std::pair<std::string, std::string>> kept;
    for (const auto* const name : {"USER", "LANG", "LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_MESSAGES"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && isHarmless(value)) kept.emplace_back(name, value);
    }
    ::clearenv();
    for (const auto& [name, value] : kept) ::setenv(name.c_str(), value.c_str(), 1);
    // Every path that is used from here on is absolute, and the root folder is always there.
    static_cast<void>(::chdir("/") == 0);
}

}  // namespace orvane
