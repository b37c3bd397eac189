#include "Formats/CatalogCoding.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Formats/CatalogReader.h"
#include "Formats/JSONText.h"
#include "Text/UTF8.h"

namespace orvane {

using nlohmann::ordered_json;

namespace {

/// The text with an empty object in the place of every number too large for a double. The parser gives up at
/// such a number even where nobody wants its value, which on the Mac is passed over; an object is passed
/// over, too, and where a value is wanted none may stand.
std::string withoutNumbersTooLarge(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool isInString = false;
    while (!text.empty()) {
        std::size_t length = 1;
        if (text.front() == '"') {
            isInString = !isInString;
        } else if (isInString) {
            length = text.front() == '\\' ? 2 : 1;
        } else {
            length =
                std::max<std::size_t>(std::min(text.find_first_not_of("+-.0123456789Ee"), text.size()), 1);
        }
        const auto piece = text.substr(0, length);
        result += !isInString && exceedsDouble(piece) ? "{}" : piece;
        text.remove_prefix(piece.size());
    }
    return result;
}

bool parse(std::string_view bytes, CatalogReader& reader) {
    return nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &reader);
}

}  // namespace

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
    if (parse(bytes, reader)) return reader.takeRecords();
    if (!reader.stoppedAtNumber()) return std::nullopt;
    reader = {};
    if (!parse(withoutNumbersTooLarge(bytes), reader)) return std::nullopt;
    return reader.takeRecords();
}

}  // namespace orvane
