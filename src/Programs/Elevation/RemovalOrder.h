#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/PrivilegedScript.h"

namespace orvane {

/// What the front asks of the part that runs as root.
struct RemovalOrder {
    /// Who asks, and is to own what goes to the Trash.
    std::string userName;
    PrivilegedRequest request;
    friend bool operator==(const RemovalOrder&, const RemovalOrder&) = default;
};

/// In bytes. More than any argument vector holds.
constexpr std::size_t largestOrder = std::size_t{16} << 20U;

/// The order as bytes: a heading, the user's name, the action, then kind, source and destination of each
/// item, each field ended by a NUL, which no name can hold.
std::string encodedOrder(const RemovalOrder& order);

/// The order in such bytes. Absent unless every byte is as it must be: the action is "trash" or "delete";
/// there is an item; each kind is "daemon" or "item"; each source is an absolute path without empty, dot or
/// dot-dot components and so is each destination in the Trash, while those of a deletion are empty; nothing
/// is cut short or left over.
std::optional<RemovalOrder> decodedOrder(std::string_view text);

/// The number of items as the prompt shows it: "1 item", "12 items".
std::string itemCount(std::size_t count);

}  // namespace orvane
