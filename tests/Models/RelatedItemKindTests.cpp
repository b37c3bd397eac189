#include "Models/RelatedItemKind.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace orvane {
namespace {

TEST(RelatedItemKind, TitlesStandInTheOrderOfTheList) {
    std::vector<std::string_view> titles;
    for (const auto kind : allRelatedItemKinds) titles.push_back(rawValue(kind));
    EXPECT_EQ(titles, (std::vector<std::string_view>{"Application", "Application Support", "Cache",
                                                     "Preferences", "Saved State", "Container", "Web Data",
                                                     "Launch Agent", "Launch Daemon", "Other Data"}));
}

TEST(RelatedItemKind, EveryKindHasItsSymbol) {
    std::vector<std::string_view> symbols;
    for (const auto kind : allRelatedItemKinds) symbols.push_back(symbol(kind));
    EXPECT_EQ(symbols,
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
