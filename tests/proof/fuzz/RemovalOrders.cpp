#include "Platform/Linux/RemovalOrder.h"
#include "Text/UTF8.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

namespace {

bool isPlainPath(std::string_view path) {
    const auto within = std::string(path) + "/";
    return path.starts_with('/') && within.find("//") == std::string::npos &&
           within.find("/./") == std::string::npos && within.find("/../") == std::string::npos;
}

/// The mistake: what comes after the last field is not looked at.
std::optional<RemovalOrder> decodedBeginning(std::string_view text) {
    return decodedOrder(text.substr(0, text.rfind('\0') + 1));
}

}  // namespace

/// An order that is taken has one form and plain paths, and the person at the prompt is told of all its
/// items.
void fuzzRemovalOrder(std::string_view bytes, Subject subject) {
    const auto header = headerOfOrder(bytes);
    std::size_t met = 0;
    itemOfOrder(bytes, [&](const OrderedItem& item) {
        promise(item.number == ++met && isPlainPath(item.item.source),
                "items are counted from one, and have plain paths");
        return false;
    });
    const auto order = subject == Subject::own ? decodedOrder(bytes) : decodedBeginning(bytes);
    if (!order) return;
    promise(encodedOrder(*order) == bytes, "an order has one form");
    promise(header && header->root == order->root && header->home == order->home, "its header is its own");
    promise(!order->request.items.empty() && order->request.items.size() == met, "every item is met");
    for (const auto& item : order->request.items) {
        const bool isTrashed = order->request.mode == RemovalMode::trash;
        promise(isPlainPath(item.source) && item.folder, "an item is in a folder, by a plain path");
        promise(isTrashed ? isPlainPath(item.destination) : item.destination.empty(),
                "only the Trash is a destination");
    }
    const auto prompt = promptText(*order);
    promise(isValidUTF8(prompt) && prompt.find_first_of("<>&\n\r\t\x1B") == std::string::npos,
            "the prompt misleads nobody");
    promise(prompt.size() < 1000, "the prompt is short");
    promise(prompt.find(std::to_string(met) + (met == 1 ? " item" : " items")) != std::string::npos,
            "it tells how many");
}

}  // namespace orvane::test
