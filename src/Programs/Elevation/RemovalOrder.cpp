#include "Programs/Elevation/RemovalOrder.h"

namespace orvane {

namespace {

constexpr std::string_view heading = "orvane removal order 1";

/// Takes the field that the text begins with off the text; absent when no NUL ends it.
std::optional<std::string> takeField(std::string_view& text) {
    const auto end = text.find('\0');
    if (end == std::string_view::npos) return std::nullopt;
    std::string field(text.substr(0, end));
    text.remove_prefix(end + 1);
    return field;
}

bool isPlainAbsolutePath(std::string_view path) {
    if (!path.starts_with('/')) return false;
    for (;;) {
        path.remove_prefix(1);
        const auto end = path.find('/');
        const auto component = path.substr(0, end);
        if (component.empty() || component == "." || component == "..") return false;
        if (end == std::string_view::npos) return true;
        path.remove_prefix(end);
    }
}

std::optional<PrivilegedRequest::Item> takeItem(std::string_view& text, bool toTrash) {
    const auto kind = takeField(text);
    if (!kind || (*kind != "daemon" && *kind != "item")) return std::nullopt;
    const auto source = takeField(text);
    if (!source || !isPlainAbsolutePath(*source)) return std::nullopt;
    const auto destination = takeField(text);
    if (!destination) return std::nullopt;
    if (toTrash ? !isPlainAbsolutePath(*destination) : !destination->empty()) return std::nullopt;
    return PrivilegedRequest::Item{*kind, *source, *destination};
}

}  // namespace

std::string encodedOrder(const RemovalOrder& order) {
    std::string text;
    const auto append = [&](std::string_view field) { (text += field) += '\0'; };
    append(heading);
    append(order.userName);
    append(order.request.action);
    for (const auto& item : order.request.items) {
        append(item.kind);
        append(item.source);
        append(item.destination);
    }
    return text;
}

std::optional<RemovalOrder> decodedOrder(std::string_view text) {
    if (text.size() > largestOrder || takeField(text) != heading) return std::nullopt;
    const auto userName = takeField(text);
    const auto action = takeField(text);
    if (!userName || userName->empty() || (action != "trash" && action != "delete")) return std::nullopt;
    if (text.empty()) return std::nullopt;

    RemovalOrder order{*userName, {*action, {}}};
    while (!text.empty()) {
        auto item = takeItem(text, action == "trash");
        if (!item) return std::nullopt;
        order.request.items.push_back(std::move(*item));
    }
    return order;
}

std::string itemCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " item" : " items");
}

}  // namespace orvane
