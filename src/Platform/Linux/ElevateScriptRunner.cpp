#include "Platform/Linux/ElevateScriptRunner.h"

#include <fcntl.h>
#include <poll.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include "Platform/Linux/ProcessDescriptor.h"
#include "Platform/Linux/PromptFailure.h"
#include "Platform/Linux/Spawn.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Trash.h"
#include "Platform/PrivilegedScript.h"

namespace orvane {

namespace {

std::pair<std::string_view, std::string_view> splitAtLastSlash(std::string_view path) {
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos) return {{}, path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

/// The machine's name of a place in the Trash, by the opened Trash itself: `destination` is a name in the
/// Trash of some home.
Result<std::string> machineTrashPath(const Volume& volume, std::string_view destination) {
    const auto [trashPath, name] = splitAtLastSlash(destination);
    const auto [home, folder] = splitAtLastSlash(trashPath);
    if (folder != ".Trash") return failure(std::errc::invalid_argument);
    const auto trash = openTrash(volume, home.empty() ? "/" : home);
    if (!trash) return tl::unexpected(trash.error());
    return realPath(trash->get()).map([&, name = name](const std::string& place) {
        return place + "/" + std::string(name);
    });
}

/// The same request for this machine, without the items that name nothing.
Result<PrivilegedRequest> forThisMachine(const Volume& volume, const PrivilegedRequest& request) {
    PrivilegedRequest translated{request.action, {}};
    for (const auto& item : request.items) {
        const auto source = volume.machinePath(item.source);
        if (!source) continue;
        std::string destination;
        if (!item.destination.empty()) {
            auto place = machineTrashPath(volume, item.destination);
            if (!place) return tl::unexpected(place.error());
            destination = std::move(*place);
        }
        translated.items.push_back({item.kind, *source, std::move(destination)});
    }
    return translated;
}

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return errnoFailure();
    return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// Everything that is written into the pipe until its end, or until the child is gone: somebody whom it left
/// behind may keep the pipe open for ever.
std::string readUntilExit(const FileDescriptor& pipe, pid_t child) {
    const auto process = openProcess(child);
    std::array<pollfd, 2> polled{pollfd{pipe.get(), POLLIN, 0}, pollfd{process.get(), POLLIN, 0}};
    std::string text;
    for (;;) {
        if (::poll(polled.data(), polled.size(), -1) < 0) {
            if (errno == EINTR) continue;
            return text;
        }
        if (polled[0].revents == 0) return text;
        std::array<char, 4096> buffer{};
        const auto count = ::read(pipe.get(), buffer.data(), buffer.size());
        if (count == 0 || (count < 0 && errno != EINTR)) return text;
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

ScriptOutcome runProgram(const std::vector<std::string>& command) {
    auto pipe = makePipe();
    if (!pipe) return {pipe.error().message(), 0, {}};
    const auto child = spawn(command, pipe->writing.get());
    if (!child) return {child.error().message(), 0, {}};
    pipe->writing = FileDescriptor();
    auto standardError = readUntilExit(pipe->reading, *child);
    const int status = waitForTermination(*child);
    return {{}, status, inPlainWords(status, std::move(standardError))};
}

class ElevateScriptRunner final : public ScriptRunner {
  public:
    ElevateScriptRunner(std::shared_ptr<const Volume> volume, std::string program)
        : volume_(std::move(volume)), program_(std::move(program)) {}

    ScriptOutcome run(const std::vector<std::string>& arguments) override {
        const auto request = requestFromScriptArguments(arguments);
        if (!request) return {std::make_error_code(std::errc::invalid_argument).message(), 0, {}};
        const auto translated = forThisMachine(*volume_, *request);
        if (!translated) return {"The Trash cannot be used: " + translated.error().message(), 0, {}};
        if (translated->items.empty()) return {};

        auto command = scriptArguments(*translated);
        command.insert(command.begin(), program_);
        return runProgram(command);
    }

  private:
    const std::shared_ptr<const Volume> volume_;
    const std::string program_;
};

}  // namespace

std::unique_ptr<ScriptRunner> makeScriptRunner(std::shared_ptr<const Volume> volume, std::string program) {
    return std::make_unique<ElevateScriptRunner>(std::move(volume), std::move(program));
}

}  // namespace orvane
