#include "Platform/Linux/PolkitRunner.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "Models/FileURL.h"
#include "Platform/Linux/PlannedPlace.h"
#include "Platform/Linux/RemovalOrder.h"
#include "Platform/Linux/RootOwned.h"
#include "Platform/Linux/SealedMemory.h"
#include "Platform/Linux/TrashFolder.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Process.h"

namespace orvane {

namespace {

constexpr int dismissed = 126;
constexpr int notAuthorized = 127;

struct Wording {
    int status;
    /// A line that begins so, in pkexec's words, which are the same in every language.
    std::string_view line;
    std::string_view plainWords;
};

constexpr std::string_view noService =
    "Nobody could be asked for administrator permission: the authorization service (polkit) is not running.";

constexpr std::array wordings{
    Wording{dismissed, "Error executing command as another user: Request dismissed",
            "Administrator permission was not granted: the request was dismissed."},
    Wording{notAuthorized, "Error executing command as another user: Not authorized",
            "Administrator permission was not granted: the password was not accepted, or the request is not "
            "authorized."},
    Wording{notAuthorized, "Error executing command as another user: No authentication agent found.",
            "Nobody could be asked for administrator permission: no authentication agent is running in this "
            "session. A desktop session has one; otherwise run Orvane as root."},
    Wording{notAuthorized, "Error getting authority: ", noService},
    Wording{notAuthorized, "Error checking for authorization ", noService},
};

bool hasLine(std::string_view text, std::string_view line) {
    for (auto at = text.find(line); at != std::string_view::npos; at = text.find(line, at + 1)) {
        if (at == 0 || text[at - 1] == '\n') return true;
    }
    return false;
}

/// An order, and where its items stood in the request.
struct Translation {
    RemovalOrder order;
    std::vector<std::size_t> places;
    /// Why the others are left out, by their place in the request.
    std::vector<std::string> reasons;
};

/// The path as an order has it: in its shortest form.
std::string plainPath(const std::string& path) {
    return FileURL::fromPath(path, false).standardized().path();
}

/// The home's path on the volume with its links resolved, as the order has it.
Result<std::string> realHome(const Volume& volume, const std::string& home) {
    const auto folder = volume.openPath(home, O_PATH | O_DIRECTORY);
    if (!folder) return tl::unexpected(folder.error());
    auto path = realPath(folder->get());
    if (!path) return path;
    const auto onVolume = volume.volumePath(*path);
    if (!onVolume) return failure(std::errc::no_such_file_or_directory);
    return *onVolume;
}

/// A path below one folder as the same path below another.
std::string rebased(const std::string& path, const std::string& from, const std::string& to) {
    const auto base = from == "/" ? std::string() : from;
    if (!path.starts_with(base + "/")) return path;
    return (to == "/" ? std::string() : to) + path.substr(base.size());
}

tl::expected<Translation, std::string> translated(const Volume& volume, const std::string& home,
                                                  const PrivilegedRequest& request) {
    const auto rootIdentity = identityOf(volume.root());
    if (!rootIdentity)
        return tl::unexpected<std::string>("The volume cannot be used: " + rootIdentity.error().message());
    const auto orderedHome = realHome(volume, home);
    if (!orderedHome)
        return tl::unexpected<std::string>("The home cannot be used: " + orderedHome.error().message());
    const auto served = openServedHome(volume.root(), *orderedHome);
    if (!served) return tl::unexpected<std::string>("Administrator rights cannot be used: " + served.error());
    if (request.mode == RemovalMode::trash) {
        // The one who asks makes his Trash, not root.
        if (const auto trash = openTrash(served->folder.get()); !trash) {
            return tl::unexpected<std::string>("The Trash cannot be used: " + trash.error().message());
        }
    }

    Translation result{{volume.realRoot(), *rootIdentity, *orderedHome, {request.mode, {}}}, {}, {}};
    result.reasons.resize(request.items.size());
    for (std::size_t i = 0; i < request.items.size(); ++i) {
        auto item = request.items[i];
        item.source = rebased(plainPath(item.source), home, *orderedHome);
        item.destination = rebased(item.destination, home, *orderedHome);
        const auto folder = openFolderOfPlannedItem(*served, item);
        if (!folder) {
            result.reasons[i] = folder.error();
            continue;
        }
        item.folder = identityOf(folder->get()).value_or(FileIdentity{});
        result.order.request.items.push_back(std::move(item));
        result.places.push_back(i);
    }
    return result;
}

/// Whether pkexec lets a variable of that value through, instead of refusing everything because of it.
bool isHarmless(std::string_view value) {
    return value.find_first_of("/%") == std::string_view::npos && value.find("..") == std::string_view::npos;
}

/// What pkexec refuses to start with stays behind: all but the language. Whoever asks has no say in what
/// root's programs find there.
std::vector<std::string> environmentForRoot(uid_t user) {
    std::vector<std::string> environment;
    for (const auto* const name : {"LANG", "LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_MESSAGES"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && isHarmless(value)) environment.push_back(std::string(name) + "=" + value);
    }
    // Who asks, as pkexec tells it.
    if (user == 0) environment.emplace_back("PKEXEC_UID=0");
    return environment;
}

PrivilegedOutcome runProgram(const std::vector<std::string>& command, std::string_view input) {
    const auto failed = [](const std::error_code& error) {
        return PrivilegedOutcome{error.message(), 0, {}, {}};
    };
    const auto memory = sealedMemory(input);
    if (!memory) return failed(memory.error());
    const auto environment = environmentForRoot(::geteuid());
    auto end =
        runToEnd(command, {.standardInput = memory->get(), .environment = &environment, .folder = "/"});
    if (!end) return failed(end.error());
    return {{}, end->status, inPlainWords(end->status, std::move(end->standardError)), {}};
}

/// Takes the part's reasons, lines of the form "3: why", to the places of the items in the request.
void assignReasons(std::string_view standardError, const Translation& translation,
                   std::vector<std::string>& reasons) {
    while (!standardError.empty()) {
        const auto line = standardError.substr(0, standardError.find('\n'));
        standardError.remove_prefix(std::min(line.size() + 1, standardError.size()));
        std::size_t number = 0;
        const auto* const end = line.data() + line.size();
        const auto [rest, error] = std::from_chars(line.data(), end, number);
        const auto text = line.substr(static_cast<std::size_t>(rest - line.data()));
        if (error != std::errc() || !text.starts_with(": ")) continue;
        if (number == 0 || number > translation.places.size()) continue;
        auto& reason = reasons[translation.places[number - 1]];
        if (reason.empty()) reason = text.substr(2);
    }
}

class PolkitRunner final : public PrivilegedRunner {
  public:
    PolkitRunner(std::shared_ptr<const Volume> volume, const std::string& home, std::string ownPart)
        : volume_(std::move(volume)), home_(plainPath(home)), ownPart_(std::move(ownPart)) {}

    PrivilegedOutcome run(const PrivilegedRequest& request) override {
        auto translation = translated(*volume_, home_, request);
        if (!translation) return {translation.error(), 0, {}, {}};
        PrivilegedOutcome outcome;
        if (!translation->order.request.items.empty()) {
            const auto order = encodedOrder(translation->order);
            // The other side would refuse it, but only after the user was asked.
            if (!decodedOrder(order)) {
                return {std::make_error_code(std::errc::invalid_argument).message(), 0, {}, {}};
            }
            auto command = rootPart();
            command.push_back(promptText(translation->order));
            outcome = runProgram(command, order);
        }
        outcome.reasons = std::move(translation->reasons);
        assignReasons(outcome.standardError, *translation, outcome.reasons);
        return outcome;
    }

  private:
    std::vector<std::string> rootPart() const {
        const auto installed = installedRootPart();
        if (::geteuid() == 0 || !isRootsOwnProgram(installed)) return {ownPart_};
        return {"/usr/bin/pkexec", "--disable-internal-agent", installed};
    }

    const std::shared_ptr<const Volume> volume_;
    const std::string home_;
    const std::string ownPart_;
};

}  // namespace

std::unique_ptr<PrivilegedRunner> makePrivilegedRunner(std::shared_ptr<const Volume> volume,
                                                       const std::string& home, std::string ownPart) {
    return std::make_unique<PolkitRunner>(std::move(volume), home, std::move(ownPart));
}

std::string installedRootPart() {
    return ORVANE_ROOT_PART;
}

std::string inPlainWords(int terminationStatus, std::string standardError) {
    for (const auto& wording : wordings) {
        if (wording.status == terminationStatus && hasLine(standardError, wording.line))
            return std::string(wording.plainWords);
    }
    return standardError;
}

}  // namespace orvane
