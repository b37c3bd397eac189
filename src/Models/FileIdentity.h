#pragma once

#include <compare>
#include <cstdint>

namespace orvane {

/// What tells two files apart, whatever they are called: the entry itself, links not followed.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

}  // namespace orvane
