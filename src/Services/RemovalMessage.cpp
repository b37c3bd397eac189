#include "Services/RemovalMessage.h"

namespace orvane {

std::string removalMessage(const RemovalResult& result, RemovalMode mode) {
    const bool toTrash = mode == RemovalMode::trash;
    std::string message = toTrash ? "Moved " : "Deleted ";
    message += std::to_string(result.removed.size()) + " item(s)";
    message += toTrash ? " to Trash." : " permanently.";
    if (!result.failed.empty()) {
        message += " " + std::to_string(result.failed.size()) +
                   " item(s) could not be removed. Locked items may require administrator access.";
    }
    return message;
}

}  // namespace orvane
