#include "tests/Fixtures/ShellRunner.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/Process.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// Fails as the tool does where nothing is at the place; the user is the owner of everything already.
constexpr const char* standIns = R"(export LC_ALL=C
own() { [ -e "$3" ] || [ -L "$3" ]; }
)";

PrivilegedTools toolsForTheOwner() {
    return {"false", "/bin/mv -T", "own", "/bin/rm", ""};
}

}  // namespace

PrivilegedOutcome ShellRunner::run(const PrivilegedRequest& request) {
    Run run;
    run.request = request;
    run.outcome = outcomeOf(run);
    runs_.push_back(run);
    return run.outcome;
}

std::optional<ShellRunner::Run> ShellRunner::takeRun() {
    const auto runs = std::exchange(runs_, {});
    if (runs.size() > 1) throw std::logic_error("more than one run in a batch");
    if (runs.empty()) return std::nullopt;
    return runs.front();
}

PrivilegedOutcome ShellRunner::outcomeOf(Run& run) {
    const auto count = run.request.items.size();
    if (ending_ == Ending::isDismissed) return {{}, 126, "Request dismissed\n", {}};
    if (ending_ == Ending::cannotBeLaunched) return {"No such file or directory", 0, {}, {}};
    if (ending_ == Ending::onlyPretends) return {};
    if (run.request.mode == RemovalMode::trash && !makeTrash())
        return {"The Trash cannot be used", 0, {}, {}};
    if (ending_ == Ending::losesTheFirst) {
        if (const auto first = volume_.volume()->machinePath(run.request.items.front().source)) {
            setPermissions(true);
            std::error_code ignored;
            fs::remove_all(*first, ignored);
            setPermissions(false);
            run.vanished.insert(first->substr(volume_.machinePath("").size() - 1));
        }
    }
    if (ending_ == Ending::diesHalfWay) {
        runCommands(run, count / 2, "echo 'the shell is tired' >&2; exit 3");
    } else if (ending_ == Ending::isKilledHalfWay) {
        runCommands(run, count / 2, "exec 2>/dev/null; kill -KILL $$");
    } else {
        runCommands(run, count, "");
    }
    return run.outcome;
}

/// Runs the commands for the first items, and what follows them.
void ShellRunner::runCommands(Run& run, std::size_t count, const std::string& afterwards) {
    PrivilegedRequest request{run.request.mode, {}};
    for (std::size_t i = 0; i < count; ++i) {
        auto item = run.request.items[i];
        const auto source = volume_.volume()->machinePath(item.source);
        if (!source) continue;
        item.source = *source;
        if (!item.destination.empty()) item.destination = volume_.machinePath(item.destination);
        request.items.push_back(std::move(item));
    }
    const auto text = standIns + commandText(request, "sample", toolsForTheOwner()) + afterwards;

    setPermissions(true);
    const auto status = runShell(text);
    setPermissions(false);
    run.hasRunCommands = true;
    run.outcome = {{}, status, readFile(directory_.path("errors")), {}};
}

/// Its exit status; what it says goes into a file.
int ShellRunner::runShell(const std::string& text) const {
    const auto commands = directory_.makeFile("commands", text);
    const FileDescriptor errors(
        ::open(directory_.path("errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    return waitForTermination(startProgram({"/bin/sh", commands}, {.standardError = errors.get()}).value());
}

void ShellRunner::setPermissions(bool areOpen) const {
    constexpr mode_t open = 0755;
    constexpr mode_t locked = 0555;
    for (const auto& folder : lockedFolders_) {
        if (::chmod(volume_.machinePath(folder).c_str(), areOpen ? open : locked) != 0) {
            throw std::runtime_error("no permissions for " + folder);
        }
    }
}

bool ShellRunner::makeTrash() const {
    const auto trash = volume_.machinePath(TestVolume::home() + "/.Trash");
    std::error_code error;
    if (!fs::exists(fs::symlink_status(trash))) fs::create_directory(trash, error);
    return !error && fs::is_directory(fs::symlink_status(trash));
}

}  // namespace orvane::test
