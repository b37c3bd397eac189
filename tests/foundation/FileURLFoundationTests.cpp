#include <gtest/gtest.h>

#include "Models/FileURL.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

using nlohmann::json;

TEST(Foundation, FileURLs) {
    forEachRow("file-urls.json", [](const json& row) {
        const auto url =
            FileURL::fromPath(row.at("input").get<std::string>(), row.at("isDirectory").get<bool>());
        const auto withoutExtension = url.deletingPathExtension();
        const auto appended = url.appendingPathComponent("Library/Preferences/com.example.foo.plist");
        const auto appendedTrailing = url.appendingPathComponent("Library/Caches/");
        return differences({
            {"absoluteString", row.at("absoluteString"), url.absoluteString()},
            {"path", row.at("path"), url.path()},
            {"lastPathComponent", row.at("lastPathComponent"), url.lastPathComponent()},
            {"pathExtension", row.at("pathExtension"), url.pathExtension()},
            {"withoutExtension", row.at("withoutExtension"), withoutExtension.path()},
            {"withoutExtensionLast", row.at("withoutExtensionLast"), withoutExtension.lastPathComponent()},
            {"standardizedPath", row.at("standardizedPath"), url.standardized().path()},
            {"appended", row.at("appended"), appended.path()},
            {"appendedTrailing", row.at("appendedTrailing"), appendedTrailing.path()},
        });
    });
}

}  // namespace
}  // namespace orvane::test
