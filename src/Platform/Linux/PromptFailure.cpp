#include "Platform/Linux/PromptFailure.h"

#include <array>
#include <string_view>

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

}  // namespace

std::string inPlainWords(int terminationStatus, std::string standardError) {
    for (const auto& wording : wordings) {
        if (wording.status == terminationStatus && hasLine(standardError, wording.line))
            return std::string(wording.plainWords);
    }
    return standardError;
}

}  // namespace orvane
