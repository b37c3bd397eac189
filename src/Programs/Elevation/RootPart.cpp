#include "Programs/Elevation/RootPart.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <ostream>

#include "Platform/PrivilegedScript.h"
#include "Platform/Result.h"
#include "Programs/Elevation/RemovalOrder.h"

namespace orvane {

namespace {

constexpr int refused = 2;

std::optional<uid_t> userID(std::string_view decimal) {
    uid_t user = 0;
    const auto* const end = decimal.data() + decimal.size();
    const auto [rest, error] = std::from_chars(decimal.data(), end, user);
    if (error != std::errc() || rest != end) return std::nullopt;
    return user;
}

/// Whether that is a name of that user. One user can have several.
bool names(const std::string& name, uid_t user) {
    const passwd* const entry = ::getpwnam(name.c_str());
    return entry != nullptr && entry->pw_uid == user;
}

/// All of standard input; of more than an order can be, as much as shows that it is more.
Result<std::string> standardInput() {
    std::string text;
    std::array<char, 1 << 16> buffer{};
    while (text.size() <= largestOrder) {
        const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count == 0) break;
        if (count < 0 && errno != EINTR) return errnoFailure();
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

tl::expected<std::string, std::string> authorizedCommands(std::string_view order, std::string_view announced,
                                                          std::string_view caller) {
    const auto decoded = decodedOrder(order);
    if (!decoded) return tl::unexpected<std::string>("the request is not well-formed");
    const auto count = itemCount(decoded->request.items.size());
    if (count != announced) {
        return tl::unexpected("the request holds " + count + ", which is not what was authorized");
    }
    const auto user = userID(caller);
    if (!user || !names(decoded->userName, *user)) {
        return tl::unexpected<std::string>("the request names another user than the one who asks");
    }
    return commandText(decoded->request, decoded->userName, PrivilegedTools::debian());
}

int removeAsRoot(std::string_view announced, std::string_view caller, const RootShell& shell,
                 std::ostream& err) {
    std::string problem;
    if (const auto order = standardInput(); !order) {
        problem = order.error().message();
    } else if (const auto commands = authorizedCommands(*order, announced, caller); !commands) {
        problem = commands.error();
    } else {
        problem = becomeRootShell(shell, *commands).message();
    }
    err << "Nothing was removed with administrator rights: " << problem << ".\n";
    return refused;
}

}  // namespace orvane
