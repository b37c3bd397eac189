#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Models/FileIdentity.h"
#include "Platform/PrivilegedRunner.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// What the part that runs as root is asked to do: a request, and where.
struct RemovalOrder {
    /// The volume's root folder, by its real path on this machine and by what it was when it was opened.
    std::string root;
    FileIdentity rootIdentity;
    /// Whose items these are: a folder of the volume, without a link in its path.
    std::string home;
    /// Each of its items names its folder.
    PrivilegedRequest request;
    friend bool operator==(const RemovalOrder&, const RemovalOrder&) = default;
};

/// In bytes: more than ten thousand items with names and paths of the greatest length that files have.
constexpr std::size_t largestOrder = std::size_t{64} << 20U;

/// The order as bytes: a heading, its fields, then those of each item, each field ended by a NUL, which no
/// path can hold.
std::string encodedOrder(const RemovalOrder& order);

/// The order in such bytes. Absent unless every byte is as it must be: numbers are in their shortest form;
/// there is an item; each path is absolute, without empty, dot or dot-dot components (the root and the home
/// may be
/// "/"); the destinations of a deletion are empty; nothing is cut short or left over.
std::optional<RemovalOrder> decodedOrder(std::string_view text);

/// The order without its items, which are not looked at; absent where even that is not well-formed.
std::optional<RemovalOrder> headerOfOrder(std::string_view text);

/// An item of an order, and its place in it, counted from 1.
struct OrderedItem {
    std::size_t number = 0;
    PrivilegedRequest::Item item;
};

/// The first item of a well-formed order that `isMeant` says it is.
std::optional<OrderedItem> itemOfOrder(std::string_view text, FunctionRef<bool(const OrderedItem&)> isMeant);

/// What the person at the prompt is told of an order: what becomes of how many items, and the names of the
/// first, an application first of all: `move 3 items to the Trash: “Foo.app”, “foo.plist” and 1 more`.
/// Names are cut to a length, and what could mislead in them (control characters, markup, marks that reorder
/// a line, ill-formed bytes) stands there as "?". Valid UTF-8.
std::string promptText(const RemovalOrder& order);

}  // namespace orvane
