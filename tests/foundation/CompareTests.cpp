#include <gtest/gtest.h>

#include "Text/LocalizedText.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

TEST(FoundationCompare, OrdersEveryPairAsTheMacDoes) {
    const auto text = makeLocalizedText("en_US");
    forEachRow("compare.json", [&](const nlohmann::json& row) {
        const int order = text->localizedCaseInsensitiveCompare(row.at("a").get_ref<const std::string&>(),
                                                                row.at("b").get_ref<const std::string&>());
        return differences({{"order", row.at("order"), (order > 0) - (order < 0)}});
    });
}

}  // namespace
}  // namespace orvane::test
