#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace orvane::test {

/// So many random values as property lists, each in XML and in binary: an array of {"base64", "value"}, where
/// the value is what Python reads. Null where Python cannot be run.
nlohmann::json randomPropertyLists(std::uint64_t seed, std::uint64_t count);

/// What the program reads from such a list, as those values are written: without the numbers that JSON cannot
/// say. Absent for what it takes for no list.
std::optional<nlohmann::json> sayablePropertyList(const std::string& bytes);

}  // namespace orvane::test
