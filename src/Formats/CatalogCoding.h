#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Models/InstalledApplication.h"

namespace orvane {

/// The bytes of a catalog, as the Mac's default JSON encoder writes them: members in the order of the
/// record's fields, absent ones left out, slashes escaped, dates in seconds since 2001. Absent where a value
/// has no JSON form.
std::optional<std::string> encodeCatalog(const std::vector<InstalledApplication>& applications);

/// The records of such bytes, in any member order, unknown members ignored; of two members with one name the
/// first counts. Absent when anything is wrong: malformed text, a required member missing, a value of another
/// type, one bad element. Bounded in memory by the length of the bytes, however they nest.
std::optional<std::vector<InstalledApplication>> decodeCatalog(std::string_view bytes);

/// One record's members as the catalog has them, in order. Text that is not valid UTF-8 is repaired.
nlohmann::ordered_json catalogMembers(const InstalledApplication& application);

}  // namespace orvane
