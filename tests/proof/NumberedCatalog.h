#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::test {

/// The bytes of a catalog of a few hundred applications, every one of which has the number: a mixture of two
/// shows. Numbers that are sixteen apart have the same.
const std::string& numberedCatalog(std::uint64_t number);

/// Which of the few catalogs from `first` to `last` the file at a machine path is, byte for byte; absent when
/// it is none.
std::optional<std::uint64_t> numberOfCatalog(const std::string& path, std::uint64_t first,
                                             std::uint64_t last);

/// Saves as a program does that has never lost power nor been killed: truncates the file and writes it.
void overwrite(const std::string& path, const std::string& bytes);
/// Saves as a program does that knows of one and not of the other: beside the file, renamed, and never told
/// to reach the disk.
void replaceWithoutFlush(const std::string& path, const std::string& bytes);

}  // namespace orvane::test
