#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "tests/AppleScript/AppleScript.h"

namespace {

using orvane::test::AppleScriptSystem;

/// What is in a file from its beginning on.
std::string readBack(std::FILE* file) {
    std::rewind(file);
    std::string text;
    std::array<char, 4096> buffer{};
    while (const auto count = std::fread(buffer.data(), 1, buffer.size(), file))
        text.append(buffer.data(), count);
    return text;
}

/// With the rights of this process, whoever's they are.
AppleScriptSystem::ShellEnd runShell(const std::string& command) {
    const char* const prompt = std::getenv("ORVANE_PROMPT");
    if (prompt != nullptr && std::string_view(prompt) == "dismissed") {
        throw orvane::test::AppleScriptError(-128, "User canceled.");
    }
    std::FILE* const output = std::tmpfile();
    std::FILE* const errors = std::tmpfile();
    if (output == nullptr || errors == nullptr) throw std::runtime_error("no file for what a command writes");
    const auto child = ::fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) {
        ::dup2(::fileno(output), STDOUT_FILENO);
        ::dup2(::fileno(errors), STDERR_FILENO);
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    AppleScriptSystem::ShellEnd end{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                                    readBack(output), readBack(errors)};
    std::fclose(output);
    std::fclose(errors);
    return end;
}

}  // namespace

/// In the place of the Mac's script runner: `-e SCRIPT -- ARGUMENT...`. Nobody is asked for a password; where
/// the variable ORVANE_PROMPT says "dismissed", nothing is run, as if somebody had been. As there, a result
/// goes to standard output, an error to standard error, and then the exit status is 1; the place in the
/// script, which comes before an error there, is left out.
int main(int argc, char** argv) {
    try {
        const auto variable = [](const std::string& name) {
            const char* const value = std::getenv(name.c_str());
            return std::string(value != nullptr ? value : "");
        };
        const auto shell = [](const std::string& command) { return runShell(command); };
        const auto result = orvane::test::runScriptRunner({argv + 1, argv + argc}, {variable, shell});
        std::puts(std::get<std::string>(result.held).c_str());
        return 0;
    } catch (const orvane::test::AppleScriptError& error) {
        std::fprintf(stderr, "execution error: %s (%d)\n", error.what(), error.number);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvane-script-runner: %s\n", error.what());
    }
    return 1;
}
