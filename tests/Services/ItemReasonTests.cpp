#include "Services/ItemReason.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/Services/RemovalPlannerFixture.h"

namespace orvane {
namespace {

class ItemReasonTest : public RemovalPlannerTest {
  protected:
    std::optional<std::string> why(const InstalledApplication& application, const RelatedItem& item) const {
        return whyListed(application, item, volume.files(), volume.localizedText());
    }
    /// Of the item of the plan with that path.
    std::string why(const InstalledApplication& application, const std::string& path) const {
        for (const auto& item : plan(application).items)
            if (item.id() == path) return why(application, item).value_or("no reason");
        return "not in the plan";
    }
    std::string textOf(const std::string& path) const {
        std::ifstream file(volume.machinePath(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(ItemReasonTest, NamesThePlaceAndWhatItIsNamedAfter) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Caches/com.example.foo");
    volume.makeFile(library + "Preferences/com.example.foo.plist");
    volume.makeDirectory(library + "Application Support/Foo");
    EXPECT_EQ(why(foo, "/Applications/Foo.app"), "The application itself");
    EXPECT_EQ(why(foo, library + "Caches/com.example.foo"),
              "In “Library/Caches”, named after the identifier “com.example.foo”");
    EXPECT_EQ(why(foo, library + "Preferences/com.example.foo.plist"),
              "In “Library/Preferences”, named after the identifier “com.example.foo”");
    EXPECT_EQ(why(foo, library + "Application Support/Foo"),
              "In “Library/Application Support”, named after the application “Foo”");
}

TEST_F(ItemReasonTest, EachItemOfAPlanHasItsOwn) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Caches/com.example.foo");
    volume.makeFile("/Library/LaunchDaemons/d.plist", "runs com.example.foo");
    const auto planned = plan(foo);
    ASSERT_EQ(planned.items.size(), 3U);
    test::MainLoop mainLoop;
    asio::thread_pool pool(2);
    RemovalPlanner planner(pool.get_executor(), volume.files(), workspace, volume.localizedText());
    const auto reasons = mainLoop.run(planner.reasons(planned));
    ASSERT_EQ(reasons.size(), planned.items.size());
    for (std::size_t index = 0; index < reasons.size(); ++index)
        EXPECT_EQ(reasons[index], why(foo, planned.items[index])) << planned.items[index].id();
}

TEST_F(ItemReasonTest, SaysWhatIsMentioned) {
    volume.makeFile("/Library/LaunchDaemons/d.plist", "runs COM.example.foo and Foo");
    volume.makeDirectory(library + "Group Containers/TEAM.com.example.foo");
    EXPECT_EQ(why(foo, "/Library/LaunchDaemons/d.plist"), "Mentions “com.example.foo”");
    EXPECT_EQ(why(foo, library + "Group Containers/TEAM.com.example.foo"),
              "Its name mentions “com.example.foo”");
}

TEST_F(ItemReasonTest, SaysSoWhereOnlyAShortNameIsMentioned) {
    volume.makeFile("/Library/LaunchAgents/food.plist", "eats food");
    volume.makeDirectory(library + "Group Containers/football");
    const auto longer = application(FileURL::fromPath("/Applications/Food.app", true), std::nullopt);
    EXPECT_EQ(why(foo, "/Library/LaunchAgents/food.plist"),
              "Mentions “Foo”, which is so short that others may, too");
    EXPECT_EQ(why(foo, library + "Group Containers/football"),
              "Its name mentions “Foo”, which is so short that others may, too");
    EXPECT_EQ(why(longer, "/Library/LaunchAgents/food.plist"), "Mentions “Food”");
}

TEST_F(ItemReasonTest, CountsLettersAndNotBytes) {
    volume.makeFile("/Library/LaunchAgents/a.plist", "äöü");
    const auto umlauts = application(FileURL::fromPath("/Applications/äöü.app", true), std::nullopt);
    EXPECT_EQ(why(umlauts, "/Library/LaunchAgents/a.plist"),
              "Mentions “äöü”, which is so short that others may, too");
}

TEST_F(ItemReasonTest, DoesNotPretendThatAnyIdentifierNamesAFile) {
    volume.makeDirectory(library + "Caches");
    volume.makeDirectory(library + "Logs");
    EXPECT_EQ(why(application(foo.url, ""), library + "Caches"),
              "Where the identifier “” leads from “Library/Caches”");
    EXPECT_EQ(why(application(foo.url, "../Logs"), library + "Caches/../Logs"),
              "Where the identifier “../Logs” leads from “Library/Caches”");
}

TEST_F(ItemReasonTest, HasNoneForWhatIsNotInThePlan) {
    volume.makeFile("/Library/LaunchDaemons/d.plist", "somebody else's");
    volume.makeDirectory(library + "Group Containers/TEAM.com.example.bar");
    const auto item = [](const std::string& path, Kind kind) {
        RelatedItem made;
        made.url = FileURL::fromPath(path, false);
        made.kind = kind;
        return made;
    };
    EXPECT_FALSE(why(foo, item("/Library/LaunchDaemons/d.plist", Kind::launchDaemon)));
    EXPECT_FALSE(why(foo, item("/Library/LaunchDaemons/gone.plist", Kind::launchDaemon)));
    EXPECT_FALSE(why(foo, item(library + "Group Containers/TEAM.com.example.bar", Kind::container)));
    EXPECT_FALSE(why(foo, item(library + "Caches/other", Kind::cache)));
    EXPECT_FALSE(why(foo, item(library + "Caches/com.example.foo", Kind::container)));
}

/// A sentence taken at its word, without the rules that made it.
class Claim {
  public:
    explicit Claim(std::string sentence) : sentence_(std::move(sentence)) {
        const std::string open = "“";
        const std::string close = "”";
        for (std::size_t at = 0; (at = sentence_.find(open, at)) != sentence_.npos;) {
            at += open.size();
            const auto end = sentence_.find(close, at);
            quoted.push_back(sentence_.substr(at, end - at));
            at = end;
        }
    }
    bool says(const std::string& words) const { return sentence_.find(words) != sentence_.npos; }

    std::vector<std::string> quoted;

  private:
    std::string sentence_;
};

bool contains(std::string text, std::string term) {
    const auto lower = [](std::string& value) {
        std::ranges::transform(value, value.begin(), [](unsigned char c) { return std::tolower(c); });
    };
    lower(text);
    lower(term);
    return !term.empty() && text.find(term) != text.npos;
}

TEST_F(ItemReasonTest, IsTrueOfEveryItemOfRandomDisks) {
    std::mt19937 random(11);
    const std::array<std::string, 5> names{"Foo", "Food", "Amber", "ox", "Foo Bar"};
    const std::array<std::string, 4> identifiers{"com.example.foo", "com.example.food", "ox",
                                                 "org.example.amber"};
    const auto any = [&](const auto& values) { return values[random() % values.size()]; };
    const std::array<std::string, 6> folders{"Caches", "Logs",         "Application Support",
                                             "WebKit", "HTTPStorages", "Containers"};
    for (int i = 0; i < 60; ++i) {
        const auto number = std::to_string(i);
        const auto text = any(names) + (i % 3 == 0 ? " " + any(identifiers) : "x");
        volume.makeFile(library + "LaunchAgents/" + number + ".plist", text);
        volume.makeFile("/Library/LaunchDaemons/" + number + ".plist", "oxygen " + any(identifiers));
        volume.makeDirectory(library + "Group Containers/" + number + any(names) + any(identifiers));
        volume.makeDirectory(library + any(folders) + "/" + (i % 2 == 0 ? any(names) : any(identifiers)));
        volume.makeFile(library + "Preferences/" + any(identifiers) + ".plist");
    }
    std::size_t shortOnes = 0;
    std::size_t checked = 0;
    for (const auto& name : names) {
        for (const auto& identifier : identifiers) {
            const auto subject =
                application(FileURL::fromPath("/Applications/" + name + ".app", true), identifier);
            for (const auto& item : plan(subject).items) {
                const auto reason = why(subject, item);
                ASSERT_TRUE(reason) << item.id();
                SCOPED_TRACE(item.id() + ": " + *reason);
                ++checked;
                const Claim claim(*reason);
                if (claim.says("entions")) {
                    const auto text =
                        claim.says("Its name") ? item.url.lastPathComponent() : textOf(item.id());
                    const auto& term = claim.quoted.at(0);
                    EXPECT_TRUE(contains(text, term));
                    EXPECT_TRUE(term == name || term == identifier);
                    const bool isOnlyShort = term.size() < 4;
                    EXPECT_EQ(claim.says("so short"), isOnlyShort);
                    for (const auto& other : {name, identifier})
                        EXPECT_FALSE(isOnlyShort && other.size() >= 4 && contains(text, other));
                    shortOnes += isOnlyShort ? 1 : 0;
                } else {
                    ASSERT_EQ(claim.quoted.size(), 2U);
                    const auto& giver = claim.quoted[1];
                    EXPECT_EQ(giver, claim.says("the identifier") ? identifier : name);
                    EXPECT_TRUE(item.id().starts_with("/Users/sample/" + claim.quoted[0] + "/" + giver));
                }
            }
        }
    }
    EXPECT_GT(checked, 500U);
    EXPECT_GT(shortOnes, 50U);
}

}  // namespace
}  // namespace orvane
