#include "Services/CatalogCoding.h"

#include <nlohmann/json.hpp>

#include "Models/UTF8.h"
#include "Services/CatalogReader.h"
#include "Services/JSONText.h"

namespace orvane {

using nlohmann::ordered_json;

ordered_json catalogMembers(const InstalledApplication& application) {
    ordered_json members;
    members["url"] = application.url.absoluteString();
    members["name"] = repairedUTF8(application.name);
    if (application.bundleIdentifier)
        members["bundleIdentifier"] = repairedUTF8(*application.bundleIdentifier);
    members["version"] = repairedUTF8(application.version);
    members["size"] = application.size;
    if (application.modifiedAt) {
        members["modifiedAt"] = application.modifiedAt->timeIntervalSinceReferenceDate;
    }
    members["isSystemApplication"] = application.isSystemApplication;
    members["isInstalled"] = application.isInstalled;
    return members;
}

std::optional<std::string> encodeCatalog(const std::vector<InstalledApplication>& applications) {
    auto list = ordered_json::array();
    for (const auto& application : applications) list.push_back(catalogMembers(application));
    return jsonText(list);
}

std::optional<std::vector<InstalledApplication>> decodeCatalog(std::string_view bytes) {
    // The parser takes a NUL for the end of the text; in JSON there is none.
    if (bytes.find('\0') != std::string_view::npos) return std::nullopt;
    CatalogReader reader;
    if (!nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &reader)) return std::nullopt;
    return reader.takeRecords();
}

}  // namespace orvane
