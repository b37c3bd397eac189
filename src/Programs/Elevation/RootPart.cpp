#include "Programs/Elevation/RootPart.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <utility>

#include "Platform/Linux/SealedMemory.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/Process.h"
#include "Platform/Posix/Volume.h"
#include "Platform/ProtectedLocations.h"

namespace orvane {

namespace {

using Refusal = tl::unexpected<std::string>;

constexpr int refused = 2;

std::optional<uid_t> userID(std::string_view decimal) {
    uid_t user = 0;
    const auto* const end = decimal.data() + decimal.size();
    const auto [rest, error] = std::from_chars(decimal.data(), end, user);
    if (error != std::errc() || rest != end || decimal.empty()) return std::nullopt;
    return user;
}

bool isWritableByEverybody(const struct stat& folder) {
    return (folder.st_mode & S_IWOTH) != 0 && (folder.st_mode & S_ISVTX) == 0;
}

/// Whether nobody but the home's owner, the owner of the volume or root has put the home where it is.
bool isTrustworthyHome(int root, const ServedHome& home, uid_t ownerOfRoot) {
    const auto isTrusted = [&](const struct stat& folder) {
        const auto user = folder.st_uid;
        return (user == 0 || user == home.owner || user == ownerOfRoot) && !isWritableByEverybody(folder);
    };
    for (auto end = home.path.find('/', 1);; end = home.path.find('/', end + 1)) {
        const auto folder =
            openInRootWithoutLinks(root, home.path.substr(0, end).c_str(), O_PATH | O_DIRECTORY);
        const auto status = statusOf(folder.get());
        if (!status || !isTrusted(*status)) return false;
        if (end == std::string::npos) return true;
    }
}

/// Why that user may not ask for that home on that volume; empty where he may.
std::string whyNotServed(const RootScope& scope, uid_t caller) {
    const auto root = statusOf(scope.root.get());
    const auto machine = statusOf(FileDescriptor(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC)).get());
    if (!root || !machine) return "the volume cannot be looked at";
    const auto owner = scope.home.owner;
    const bool isMachine = identityOf(*root) == identityOf(*machine);
    if (isMachine && caller != 0 && owner != caller) return "the home is another user's";
    const auto ownerOfRoot = root->st_uid;
    if (ownerOfRoot != 0 && ownerOfRoot != caller && ownerOfRoot != owner && caller != 0) {
        return "the volume is another user's";
    }
    if (isWritableByEverybody(*root)) return "everybody can write to the volume";
    if (!isTrustworthyHome(scope.root.get(), scope.home, ownerOfRoot)) {
        return "a folder on the way to the home is another user's";
    }
    return {};
}

/// Why that item may not be touched; empty where it may.
std::string whyNotTouched(const RootScope& scope, const RemovalOrder& order,
                          const PrivilegedRequest::Item& item, const ProtectedLocations& protectedLocations,
                          EntryRemover& remover) {
    if (!item.folder) return "it names no folder";
    if (order.request.mode == RemovalMode::trash && nameInTrash(order.home, item.destination).empty()) {
        return "it would not go to the Trash";
    }
    if (const auto folder = openFolderOfPlannedItem(scope.home, item); !folder) return folder.error();
    if (protectedLocations.contains(remover.look(FileURL::fromPath(item.source, false)))) {
        return "other applications use it";
    }
    return {};
}

/// Leaves the session of whoever asked; where this process leads one, in a child, whose end is then its own.
void leaveSession() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU, SIGPIPE}) {
        ::signal(signal, SIG_IGN);
    }
    if (::setsid() >= 0) return;
    const auto child = ::fork();
    // Without a child it stays where it is: better than to leave what was authorized undone.
    if (child < 0) return;
    if (child > 0) ::_exit(waitForTermination(child));
    ::setsid();
}

/// Puts a descriptor where the tools look for it. What is there is closed.
bool handOn(const FileDescriptor& file, int place) {
    return ::dup2(file.get(), place) == place;
}

std::error_code becomeShell(const CheckedOrder& checked, const std::string& toolProgram) {
    const auto commands = sealedMemory(
        commandText(checked.order.request, std::to_string(checked.owner), rootTools(toolProgram)));
    if (!commands) return commands.error();
    const auto order = sealedMemory(encodedOrder(checked.order));
    if (!order) return order.error();
    const auto moved = sharedMemory(checked.order.request.items.size() * sizeof(FileIdentity));
    if (!moved) return moved.error();
    // Above all the places that they go to, whichever were free.
    constexpr int above = 10;
    const FileDescriptor input(::fcntl(commands->get(), F_DUPFD_CLOEXEC, above));
    const FileDescriptor forTools(::fcntl(order->get(), F_DUPFD_CLOEXEC, above));
    const FileDescriptor forMoves(::fcntl(moved->get(), F_DUPFD_CLOEXEC, above));
    const FileDescriptor root(::fcntl(checked.root.get(), F_DUPFD_CLOEXEC, above));
    if (!handOn(input, STDIN_FILENO) || !handOn(root, rootDescriptor) || !handOn(forTools, orderDescriptor) ||
        !handOn(forMoves, movedDescriptor)) {
        return currentError();
    }
    ::clearenv();
    ::setenv("LC_ALL", "C.UTF-8", 1);
    if (::chdir("/") != 0) return currentError();
    leaveSession();
    ::execl("/bin/sh", "sh", "-s", nullptr);
    return currentError();
}

}  // namespace

PrivilegedTools rootTools(const std::string& program) {
    const auto words = shellQuoted(program);
    return {words + " unload", words + " move", words + " own", words + " remove", ""};
}

tl::expected<CheckedOrder, std::string> checkedOrder(std::string_view text, std::string_view announced,
                                                     std::string_view caller) {
    auto order = decodedOrder(text);
    if (!order) return Refusal("the request is not well-formed");
    if (promptText(*order) != announced) return Refusal("the request is not what was authorized");
    const auto user = userID(caller);
    if (!user) return Refusal("nobody knows who asks");

    auto root = openRoot(*order);
    if (!root) return Refusal(root.error());
    FileDescriptor rootForScope(::fcntl(root->get(), F_DUPFD_CLOEXEC, 0));
    const auto scope = openScope(std::move(rootForScope), order->home, order->request.mode);
    if (!scope) return Refusal(scope.error());
    if (auto reason = whyNotServed(*scope, *user); !reason.empty()) return Refusal(std::move(reason));

    const auto volume = Volume::open(FileDescriptor(::fcntl(root->get(), F_DUPFD_CLOEXEC, 0)));
    if (!volume) return Refusal(volume.error().message());
    const auto files = makeFileManager(*volume, order->home, order->home);
    const ProtectedLocations protectedLocations(*files);
    const auto remover = files->makeEntryRemover();
    std::size_t number = 0;
    for (const auto& item : order->request.items) {
        ++number;
        const auto reason = whyNotTouched(*scope, *order, item, protectedLocations, *remover);
        if (!reason.empty()) return Refusal("item " + std::to_string(number) + ": " + reason);
    }
    const auto owner = scope->home.owner;
    return CheckedOrder{std::move(*order), std::move(*root), owner};
}

int removeAsRoot(std::string_view announced, std::string_view caller, const std::string& toolProgram,
                 std::ostream& err) {
    std::string problem;
    if (const auto order = readToEnd(STDIN_FILENO, largestOrder); !order) {
        problem = order.error().message();
    } else if (const auto checked = checkedOrder(*order, announced, caller); !checked) {
        problem = checked.error();
    } else {
        problem = becomeShell(*checked, toolProgram).message();
    }
    err << "Nothing was removed with administrator rights: " << problem << ".\n";
    return refused;
}

}  // namespace orvane
