#pragma once

#include <string>
#include <tl/expected.hpp>

#include "Platform/Linux/PlannedPlace.h"
#include "Platform/Linux/RemovalOrder.h"
#include "Platform/Posix/FileDescriptor.h"

namespace orvane {

// What the part that runs as root hands to its tools, which the shell starts: the volume's root folder, the
// order in sealed memory, and memory in which the move of each item leaves what it has moved.
inline constexpr int rootDescriptor = 3;
inline constexpr int orderDescriptor = 4;
inline constexpr int movedDescriptor = 5;

/// Where an order may reach, opened: its volume, the home that it serves and that home's Trash.
struct RootScope {
    FileDescriptor root;
    ServedHome home;
    /// Empty where nothing goes to the Trash.
    FileDescriptor trash;
};

/// Opens the volume's root by its path, without following a link, and makes sure that it is the folder that
/// the order names. The error is a few words for a person.
tl::expected<FileDescriptor, std::string> openRoot(const RemovalOrder& order);

/// Opens the home and, for an order that needs it, the Trash: a real folder of the home's owner, directly in
/// his home. The error is a few words for a person.
tl::expected<RootScope, std::string> openScope(FileDescriptor root, const std::string& home,
                                               RemovalMode mode);

}  // namespace orvane
