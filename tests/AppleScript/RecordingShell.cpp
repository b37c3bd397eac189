#include "tests/AppleScript/RecordingShell.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "Platform/Posix/Process.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* callsFile = "/calls";

void demand(bool isDone, const std::string& what) {
    if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    demand(file.good(), path);
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
int runWithFiles(const std::vector<std::string>& command, const std::string& input) {
    posix_spawn_file_actions_t files{};
    ::posix_spawn_file_actions_init(&files);
    constexpr int toWrite = O_WRONLY | O_CREAT | O_TRUNC;
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/output", toWrite, 0600);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/errors", toWrite, 0600);
    std::vector<char*> arguments;
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    std::array<char*, 1> noEnvironment{nullptr};
    pid_t child = 0;
    errno = ::posix_spawn(&child, arguments.front(), &files, nullptr, arguments.data(), noEnvironment.data());
    ::posix_spawn_file_actions_destroy(&files);
    demand(errno == 0, command.front());
    return waitForTermination(child);
}

}  // namespace

void enterShellOfRecordedTools(const std::string& recorder) {
    const auto root = fs::temp_directory_path() / "root-of-recorded-tools";
    for (const auto* const libraries : {"/lib", "/lib64", "/usr/lib", "/usr/lib64"}) {
        if (!fs::is_directory(libraries)) continue;
        const auto place = root.string() + libraries;
        fs::create_directories(place);
        demand(::mount(libraries, place.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0, libraries);
    }
    for (const auto* const folder : {"/bin", "/usr/sbin", "/dev"})
        fs::create_directories(root.string() + folder);
    fs::copy_file(fs::canonical("/bin/sh"), root / "bin/sh");
    for (const auto* const tool : {"/bin/launchctl", "/bin/mv", "/usr/sbin/chown", "/bin/rm"}) {
        writeFile(root.string() + tool, recorder);
        fs::permissions(root.string() + tool, fs::perms::owner_all);
    }
    writeFile(root / "dev/null", "");
    demand(::chroot(root.c_str()) == 0 && ::chdir("/") == 0, "root");
}

ShellRun runRecorded(const std::string& commandText, ShellInput input) {
    writeFile(callsFile, "");
    ShellRun run;
    if (input == ShellInput::argument) {
        run.status = runWithFiles({"/bin/sh", "-c", commandText}, "/dev/null");
    } else {
        writeFile("/commands", commandText);
        run.status = runWithFiles({"/bin/sh", "-s"}, "/commands");
    }
    run.calls = recordedCalls();
    run.output = readFile("/output");
    run.errors = readFile("/errors");
    return run;
}

}  // namespace orvane::test
