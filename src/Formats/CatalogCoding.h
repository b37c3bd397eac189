#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Models/InstalledApplication.h"

namespace orvane {

/// The bytes of a catalog, as the Mac's default JSON encoder writes them: no white space, members in the
/// order of the record's fields, absent ones left out, slashes escaped, numbers in the shortest form that
/// reads back, dates in seconds since 2001. Text that is not valid UTF-8 is written with replacement
/// characters. Absent where a value has no JSON form.
std::optional<std::string> encodeCatalog(const std::vector<InstalledApplication>& applications);

/// The records of such bytes, in any member order, unknown members ignored; of two members with one name the
/// first counts. Absent when anything is wrong: malformed text, a required member missing, a value of another
/// type, one bad element. Bounded in memory by the length of the bytes, however they nest.
std::optional<std::vector<InstalledApplication>> decodeCatalog(std::string_view bytes);

/// Calls `visit(name, value)` for one record's members as the catalog has them, in order: texts, a
/// `std::int64_t`, a `double`, and booleans.
template <typename Visit>
void forEachCatalogMember(const InstalledApplication& application, const Visit& visit) {
    visit("url", application.url.absoluteString());
    visit("name", application.name);
    if (application.bundleIdentifier) visit("bundleIdentifier", *application.bundleIdentifier);
    visit("version", application.version);
    visit("size", application.size);
    if (application.modifiedAt) visit("modifiedAt", application.modifiedAt->timeIntervalSinceReferenceDate);
    visit("isSystemApplication", application.isSystemApplication);
    visit("isInstalled", application.isInstalled);
}

}  // namespace orvane
