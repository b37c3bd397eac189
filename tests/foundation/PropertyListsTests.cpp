#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/PropertyListTree.h"

namespace orvane::test {
namespace {

using nlohmann::json;

/// What the code reads from a row's bytes, in the words of a row; null for what is no property list.
json answer(const json& row) {
    const auto bytes = bytesFromBase64(row.at("base64").get<std::string>());
    const auto list = propertyListTree(bytes);
    if (!list) return nullptr;
    json result = {{"dictionary", list->is_object()}, {"label", nullptr}, {"keys", nullptr}};
    if (list->is_object()) {
        result["keys"] = json::array();
        for (const auto& entry : list->items()) result["keys"].push_back(entry.key());
    }
    if (const auto label = propertyListText(bytes, "Label")) result["label"] = *label;
    return result;
}

json expectedAnswer(const json& row) {
    if (!row.at("parses").get<bool>()) return nullptr;
    return {{"dictionary", row.at("dictionary")},
            {"label", row.value("label", json())},
            {"keys", row.value("keys", json())}};
}

TEST(FoundationPropertyLists, ReadsWhatTheMacReads) {
    // These rows bind those who read old-style text.
    const auto isOldStyle = [](const json& row) {
        return row.value("why", std::string()).starts_with("old-style text");
    };
    forEachRow("property-lists.json", isOldStyle, [](const json& row) {
        return differences({{"list", expectedAnswer(row), answer(row)}});
    });
}

TEST(FoundationPropertyLists, ReadsOrRefusesDamagedBinaryLists) {
    std::ifstream stream(sourceDirectory() + "/tests/foundation/property-lists.json", std::ios::binary);
    auto rows = json::parse(stream);
    std::size_t damaged = 0;
    for (const auto& row : rows) {
        if (row.at("binding").get<bool>() || !row.at("note").get<std::string>().starts_with("binary"))
            continue;
        ++damaged;
        const auto read = answer(row);
        const auto expected = expectedAnswer(row);
        // What the Mac refuses may still be allowed by the format; then nothing is known of what it says.
        const bool isRefused = read.is_null() || expected.is_null();
        EXPECT_TRUE(isRefused || read == expected) << row << read;
    }
    EXPECT_GT(damaged, 100U);
}

}  // namespace
}  // namespace orvane::test
