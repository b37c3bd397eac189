#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace orvane {

/// JSON as the Mac's default encoder writes it: no white space, members in the order they have, slashes
/// escaped, numbers in the shortest form that reads back. Absent where a number is not finite. Text that is
/// not valid UTF-8 is written with replacement characters.
std::optional<std::string> jsonText(const nlohmann::ordered_json& value);

}  // namespace orvane
