#include <gtest/gtest.h>

#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RelatedItem.h"
#include "Models/RunningService.h"

namespace orvane {
namespace {

InstalledApplication application() {
    return {FileURL::fromPath("/Applications/Foo.app", true),
            "Foo",
            "org.example.foo",
            "1.0",
            10,
            Date{5},
            false,
            true};
}

RelatedItem item() {
    return {FileURL::fromPath("/Library/LaunchAgents/foo.plist", false), RelatedItemKind::launchAgent, 10,
            true, "org.example.foo"};
}

/// Every change of one field makes another value with, as good as surely, another hash.
template <typename T>
void expectAllDistinct(const std::vector<T>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < values.size(); ++j) {
            EXPECT_EQ(values[i] == values[j], i == j) << i << " and " << j;
            EXPECT_EQ(std::hash<T>{}(values[i]) == std::hash<T>{}(values[j]), i == j) << i << " and " << j;
        }
    }
}

TEST(InstalledApplication, IsIdentifiedByItsPath) {
    EXPECT_EQ(application().id(), "/Applications/Foo.app");
}

TEST(InstalledApplication, EveryFieldCounts) {
    std::vector<InstalledApplication> values(10, application());
    values[1].url = FileURL::fromPath("/Applications/Foo.app", false);
    values[2].name = "Bar";
    values[3].bundleIdentifier = std::nullopt;
    values[4].bundleIdentifier = "";
    values[5].version = "2.0";
    values[6].size = 11;
    values[7].modifiedAt = std::nullopt;
    values[8].isSystemApplication = true;
    values[9].isInstalled = false;
    expectAllDistinct(values);
    EXPECT_EQ(values[0].id(), values[6].id());
}

TEST(RelatedItem, EveryFieldCounts) {
    std::vector<RelatedItem> values(7, item());
    values[1].url = FileURL::fromPath("/Library/LaunchAgents/bar.plist", false);
    values[2].kind = RelatedItemKind::launchDaemon;
    values[3].size = 11;
    values[4].requiresAdministrator = false;
    values[5].detail = std::nullopt;
    values[6].detail = "";
    expectAllDistinct(values);
    EXPECT_EQ(values[0].id(), "/Library/LaunchAgents/foo.plist");
}

TEST(RunningService, EveryFieldCounts) {
    std::vector<RunningService> values(4,
                                       RunningService{7, "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"});
    values[1].processIdentifier = 8;
    values[2].name = "Bar";
    values[3].executablePath = "";
    expectAllDistinct(values);
    EXPECT_EQ(values[0].id(), 7);
}

TEST(Date, CountsFromTheReferenceDate) {
    EXPECT_EQ(Date::fromUnixTime(978'307'200).timeIntervalSinceReferenceDate, 0);
    EXPECT_EQ(Date::fromUnixTime(978'307'201.5).timeIntervalSinceReferenceDate, 1.5);
}

}  // namespace
}  // namespace orvane
