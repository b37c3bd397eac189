#include "tests/Fixtures/BackgroundProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "Platform/Posix/FileDescriptor.h"

#include "tests/Fixtures/ChildProcess.h"

namespace orvane::test {
namespace {

/// Whether a whole line comes.
bool readLine(int descriptor) {
    for (char c = 0; c != '\n';) {
        pollfd polled{descriptor, POLLIN, 0};
        if (::poll(&polled, 1, patienceInMilliseconds) != 1 || ::read(descriptor, &c, 1) != 1) return false;
    }
    return true;
}

}  // namespace

BackgroundProgram::BackgroundProgram(const std::vector<std::string>& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    std::vector<char*> arguments;
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ == 0) {
        // A test that is killed leaves nothing behind.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(writing.get(), STDOUT_FILENO);
        ::execvp(arguments.front(), arguments.data());
        ::_exit(127);
    }
    writing = FileDescriptor();
    if (readLine(reading.get())) return;
    kill();
    throw std::runtime_error(command.front() + " does not work");
}

void BackgroundProgram::kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
}

}  // namespace orvane::test
