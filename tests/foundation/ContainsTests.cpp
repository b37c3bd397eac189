#include <gtest/gtest.h>

#include "Text/LocalizedText.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

TEST(FoundationContains, FindsEveryTermThatTheMacFinds) {
    const auto text = makeLocalizedText("en_US");
    forEachRow("contains.json", [&](const nlohmann::json& row) {
        const bool contains = text->localizedCaseInsensitiveContains(
            row.at("text").get_ref<const std::string&>(), row.at("term").get_ref<const std::string&>());
        return differences({{"contains", row.at("contains"), contains}});
    });
}

}  // namespace
}  // namespace orvane::test
