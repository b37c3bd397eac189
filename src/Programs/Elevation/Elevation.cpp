#include "Programs/Elevation/Elevation.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <ostream>

#include "Platform/PrivilegedScript.h"
#include "Programs/Elevation/RemovalOrder.h"

namespace orvane {

namespace {

constexpr int misuse = 2;
constexpr int cannotElevate = 127;

constexpr std::string_view help =
    R"(Usage: orvane-elevate -e SCRIPT -- ACTION [KIND SOURCE DESTINATION]...

Removes files with administrator rights, behind one authorization prompt. It
takes the same arguments as the Mac's script runner and is run by Orvane, not
by hand. SCRIPT is not looked at: the commands are the ones it would build.

  ACTION       trash (move) or delete (remove for good)
  KIND         daemon (unloaded first) or item
  SOURCE       what is removed, an absolute path
  DESTINATION  where it goes in the Trash; empty when deleting

  --help       print this
  --version    print the version

Installed, it asks as "Orvane wants to remove files" and gives the request to
a program of root's, on standard input. From a build folder it asks for a shell.

The exit status and standard error are those of the commands; 2 stands for
arguments that make no request, 127 for rights that cannot be had.
)";

std::optional<uid_t> userNamed(const char* name) {
    const passwd* const entry = ::getpwnam(name);
    if (entry == nullptr) return std::nullopt;
    return entry->pw_uid;
}

/// The name of the user who runs this, as the machine has it.
std::string ownName() {
    const passwd* const entry = ::getpwuid(::getuid());
    return entry != nullptr ? entry->pw_name : std::to_string(::getuid());
}

/// Who owns what goes to the Trash: the user who is logged in, as his environment has it. The part that runs
/// as root takes nobody's word for being somebody else.
std::string userName(const RootShell& shell) {
    const char* const user = std::getenv("USER");
    if (user == nullptr || *user == '\0') return ownName();
    if (shell.takesOrder && userNamed(user) != ::getuid()) return ownName();
    return user;
}

std::error_code become(RootShell shell, const PrivilegedRequest& request) {
    if (!shell.takesOrder) {
        return becomeRootShell(shell, commandText(request, userName(shell), PrivilegedTools::debian()));
    }
    const auto order = encodedOrder({userName(shell), request});
    // The other side would refuse it, but only after the user was asked.
    if (!decodedOrder(order)) return std::make_error_code(std::errc::invalid_argument);
    shell.command.push_back(itemCount(request.items.size()));
    return becomeRootShell(shell, order);
}

}  // namespace

int elevate(const std::vector<std::string>& arguments, const RootShell& shell, std::ostream& out,
            std::ostream& err) {
    if (arguments == std::vector<std::string>{"--help"}) {
        out << help;
        return EXIT_SUCCESS;
    }
    if (arguments == std::vector<std::string>{"--version"}) {
        out << "orvane-elevate " ORVANE_VERSION "\n";
        return EXIT_SUCCESS;
    }
    const auto request = requestFromScriptArguments(arguments);
    if (!request) {
        err << "orvane-elevate: these arguments are no request; see orvane-elevate --help\n";
        return misuse;
    }
    // A prompt for nothing would only teach people to say yes.
    if (request->items.empty()) return EXIT_SUCCESS;

    const auto reason = become(shell, *request);
    err << "orvane-elevate: administrator rights cannot be asked for: " << shell.command.front() << ": "
        << reason.message() << '\n';
    return cannotElevate;
}

}  // namespace orvane
