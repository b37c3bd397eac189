#include "tests/Fixtures/RunProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "Platform/Posix/FileDescriptor.h"

namespace orvane::test {
namespace {

constexpr int givesUpAfterMilliseconds = 60'000;
constexpr std::size_t mostInput = 1 << 16;

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;

    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }
};

/// In the child: becomes the program.
[[noreturn]] void become(const std::vector<std::string>& command, const ProgramOptions& options) {
    for (const auto& [name, value] : options.environment) {
        if (value.empty()) {
            ::unsetenv(name.c_str());
        } else {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    std::vector<char*> arguments;
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments.front(), arguments.data());
    ::_exit(127);
}

/// Appends what is there to read. False at the end.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 1 << 16> buffer;
    const auto count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

int statusOf(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Reads both until they end; kills the child when that takes too long.
void drain(pid_t child, int first, std::string& firstText, int second, std::string& secondText) {
    const auto start = std::chrono::steady_clock::now();
    std::array<pollfd, 2> polled{pollfd{first, POLLIN, 0}, pollfd{second, POLLIN, 0}};
    while (polled[0].fd >= 0 || polled[1].fd >= 0) {
        ::poll(polled.data(), polled.size(), 1000);
        if (polled[0].revents != 0 && !readSome(first, firstText)) polled[0].fd = -1;
        if (polled[1].revents != 0 && !readSome(second, secondText)) polled[1].fd = -1;
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(givesUpAfterMilliseconds)) {
            ::kill(child, SIGKILL);
            return;
        }
    }
}

}  // namespace

ProgramResult runProgram(const std::vector<std::string>& command, const ProgramOptions& options) {
    Pipe input;
    Pipe output;
    Pipe error;
    // Before there is a program that may end without reading it. It fits into the pipe.
    const auto size = options.input.size();
    if (size > mostInput || ::write(input.writing.get(), options.input.data(), size) < 0)
        throw std::runtime_error("no input");
    const auto child = ::fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) {
        ::dup2(input.reading.get(), STDIN_FILENO);
        ::dup2(output.writing.get(), STDOUT_FILENO);
        ::dup2(error.writing.get(), STDERR_FILENO);
        become(command, options);
    }
    output.writing = {};
    error.writing = {};
    input.reading = {};
    input.writing = {};

    ProgramResult result;
    drain(child, output.reading.get(), result.output, error.reading.get(), result.error);
    result.status = statusOf(child);
    return result;
}

ProgramResult runOnTerminal(const std::vector<std::string>& command, const std::string& input) {
    int controller = -1;
    const auto child = ::forkpty(&controller, nullptr, nullptr, nullptr);
    if (child < 0) throw std::runtime_error("no terminal");
    if (child == 0) become(command, {});
    const FileDescriptor terminal(controller);
    if (::write(controller, input.data(), input.size()) < 0) throw std::runtime_error("no input");
    ProgramResult result;
    drain(child, controller, result.output, -1, result.error);
    result.status = statusOf(child);
    return result;
}

}  // namespace orvane::test
