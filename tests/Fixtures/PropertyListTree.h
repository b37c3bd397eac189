#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::test {

/// All that the reader tells of a property list; null stands for values of which it tells no more than that
/// they are one. Absent for what is no property list.
std::optional<nlohmann::json> propertyListTree(std::string_view bytes);

bool isPropertyList(std::string_view bytes);

/// What the reader gives to who asks for the text of a key.
std::optional<std::string> propertyListText(std::string_view bytes, std::string_view key);

/// A piece of a list, so many times in a row.
std::string repeated(std::string_view piece, std::size_t count);

}  // namespace orvane::test
