#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Text/LocalizedText.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

TEST(FoundationSorted, SortsListsStablyAsTheMacDoes) {
    const auto text = makeLocalizedText("en_US");
    forEachRow("sorted.json", [&](const nlohmann::json& row) {
        auto names = row.at("input").get<std::vector<std::string>>();
        std::stable_sort(names.begin(), names.end(), [&](const auto& a, const auto& b) {
            return text->localizedCaseInsensitiveCompare(a, b) < 0;
        });
        return differences({{"sorted", row.at("sorted"), names}});
    });
}

}  // namespace
}  // namespace orvane::test
