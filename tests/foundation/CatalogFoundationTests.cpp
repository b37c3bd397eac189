#include <gtest/gtest.h>

#include "Formats/CatalogCoding.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

using nlohmann::json;

InstalledApplication recordOf(const json& row) {
    InstalledApplication record;
    record.url = FileURL::fromPath(row.at("path").get<std::string>(), row.at("isDirectory").get<bool>());
    record.name = row.at("name").get<std::string>();
    if (!row.at("bundleIdentifier").is_null()) record.bundleIdentifier = row["bundleIdentifier"];
    record.version = row.at("version").get<std::string>();
    record.size = row.at("size").get<std::int64_t>();
    if (!row.at("modifiedAt").is_null()) record.modifiedAt = Date{row["modifiedAt"].get<double>()};
    record.isSystemApplication = row.at("isSystemApplication").get<bool>();
    record.isInstalled = row.at("isInstalled").get<bool>();
    return record;
}

/// A record in the words of a row, where "path" is the path of the URL that was read.
json rowOf(const InstalledApplication& record) {
    return {
        {"url", record.url.absoluteString()},
        {"path", record.url.path()},
        {"name", record.name},
        {"bundleIdentifier", record.bundleIdentifier ? json(*record.bundleIdentifier) : json()},
        {"version", record.version},
        {"size", record.size},
        {"modifiedAt", record.modifiedAt ? json(record.modifiedAt->timeIntervalSinceReferenceDate) : json()},
        {"isSystemApplication", record.isSystemApplication},
        {"isInstalled", record.isInstalled}};
}

TEST(Foundation, CatalogWritten) {
    forEachRow("catalog-written.json", [](const json& row) {
        const auto record = recordOf(row);
        const auto written = encodeCatalog({record}).value_or("(nothing)");
        const auto readBack = decodeCatalog(written);
        return differences({
            {"written", row.at("written"), written},
            {"urlPath", row.at("urlPath"), record.url.path()},
            {"read back", true, readBack == std::vector{record}},
        });
    });
}

TEST(Foundation, CatalogRead) {
    forEachRow("catalog-read.json", [](const json& row) {
        const auto records = decodeCatalog(bytesFromBase64(row.at("base64").get<std::string>()));
        json read = json::array();
        if (records) {
            for (const auto& record : *records) read.push_back(rowOf(record));
        }
        return differences({
            {"accepted", row.at("accepted"), records.has_value()},
            {"records", row.value("records", json::array()), read},
        });
    });
}

}  // namespace
}  // namespace orvane::test
