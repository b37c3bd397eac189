#include "Models/RelatedItemKind.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

std::vector<std::string_view> ofEveryKind(std::string_view (*text)(RelatedItemKind)) {
    std::vector<std::string_view> texts(allRelatedItemKinds.size());
    std::transform(allRelatedItemKinds.begin(), allRelatedItemKinds.end(), texts.begin(), text);
    return texts;
}

TEST(RelatedItemKind, TitlesStandInTheOrderOfTheList) {
    EXPECT_EQ(ofEveryKind(rawValue),
              (std::vector<std::string_view>{"Application", "Application Support", "Cache", "Preferences",
                                             "Saved State", "Container", "Web Data", "Launch Agent",
                                             "Launch Daemon", "Other Data"}));
}

TEST(RelatedItemKind, EveryKindHasItsSymbol) {
    EXPECT_EQ(ofEveryKind(symbol),
              (std::vector<std::string_view>{"app.fill", "folder.fill", "internaldrive.fill",
                                             "gearshape.fill", "clock.arrow.circlepath", "shippingbox.fill",
                                             "globe", "bolt.horizontal.fill", "server.rack", "doc.fill"}));
}

TEST(RelatedItemKind, IsFoundByItsTitleOnly) {
    for (const auto kind : allRelatedItemKinds) EXPECT_EQ(relatedItemKindFromRawValue(rawValue(kind)), kind);
    EXPECT_EQ(relatedItemKindFromRawValue("Preferences"), RelatedItemKind::preference);
    for (const auto* text : {"Preference", "preference", "preferences", "other", "Other", ""}) {
        EXPECT_FALSE(relatedItemKindFromRawValue(text)) << text;
    }
}

TEST(RelatedItemKind, HashesItsTitle) {
    for (const auto kind : allRelatedItemKinds) {
        EXPECT_EQ(std::hash<RelatedItemKind>{}(kind), std::hash<std::string_view>{}(rawValue(kind)));
    }
}

}  // namespace
}  // namespace orvane
