#include "tests/AppleScript/RecordedTools.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* callsFile = "/calls";

void insist(bool isDone, const std::string& what) {
    if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    insist(file.good(), path);
}

void writeProgram(const std::string& path, const std::string& bytes) {
    writeFile(path, bytes);
    fs::permissions(path, fs::perms::owner_all);
}

std::vector<std::vector<std::string>> recordedCalls() {
    const auto bytes = readFile(callsFile);
    std::vector<std::vector<std::string>> calls;
    for (std::size_t at = 0; at < bytes.size();) {
        std::uint32_t count = 0;
        std::memcpy(&count, bytes.data() + at, sizeof count);
        at += sizeof count;
        auto& call = calls.emplace_back();
        for (; count > 0; --count) {
            call.emplace_back(bytes.c_str() + at);
            at += call.back().size() + 1;
        }
    }
    return calls;
}

/// Starts it with the three standard files, and waits for its end.
int runWithFiles(const std::vector<std::string>& command, const std::string& input,
                 const std::string& variable) {
    posix_spawn_file_actions_t files{};
    ::posix_spawn_file_actions_init(&files);
    constexpr int toWrite = O_WRONLY | O_CREAT | O_TRUNC;
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/output", toWrite, 0600);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/errors", toWrite, 0600);
    std::vector<char*> arguments;
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    std::array<char*, 2> environment{variable.empty() ? nullptr : const_cast<char*>(variable.c_str()),
                                     nullptr};
    pid_t child = 0;
    errno = ::posix_spawn(&child, arguments.front(), &files, nullptr, arguments.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&files);
    insist(errno == 0, command.front());
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

ShellRun recorded(const std::vector<std::string>& command, const std::string& input,
                  const std::string& variable) {
    writeFile(callsFile, "");
    ShellRun run;
    run.status = runWithFiles(command, input, variable);
    run.calls = recordedCalls();
    run.output = readFile("/output");
    run.errors = readFile("/errors");
    return run;
}

}  // namespace

RecordedTools::RecordedTools()
    : recorder_(readFile(binaryDirectory() + "/orvane-call-recorder")),
      scriptRunner_(readFile(binaryDirectory() + "/orvane-script-runner")) {}

void RecordedTools::enter() const {
    const auto root = fs::temp_directory_path() / "root-of-recorded-tools";
    for (const auto* const needed : {"/lib", "/lib64", "/usr/lib", "/usr/lib64", "/proc"}) {
        if (!fs::is_directory(needed)) continue;
        const auto place = root.string() + needed;
        fs::create_directories(place);
        insist(::mount(needed, place.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0, needed);
    }
    for (const auto* const folder : {"/bin", "/usr/bin", "/usr/sbin", "/dev", "/tmp"})
        fs::create_directories(root.string() + folder);
    fs::copy_file(fs::canonical("/bin/sh"), root / "bin/sh");
    for (const auto* const tool : {"/bin/launchctl", "/bin/mv", "/usr/sbin/chown", "/bin/rm"}) {
        writeProgram(root.string() + tool, recorder_);
    }
    writeProgram(root.string() + scriptRunner, scriptRunner_);
    writeFile(root / "dev/null", "");
    insist(::chroot(root.c_str()) == 0 && ::chdir("/") == 0, "root");
}

ShellRun runRecorded(const std::string& commandText, ShellInput input) {
    if (input == ShellInput::argument) return recorded({"/bin/sh", "-c", commandText}, "/dev/null", {});
    writeFile("/commands", commandText);
    return recorded({"/bin/sh", "-s"}, "/commands", {});
}

ShellRun runRecordedProgram(const std::vector<std::string>& command, const std::string& variable) {
    return recorded(command, "/dev/null", variable);
}

}  // namespace orvane::test
