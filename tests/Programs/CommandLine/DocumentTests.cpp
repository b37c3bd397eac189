#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

class Documents : public CommandLineTest {
  protected:
    Documents() {
        makeApplication("/Applications/Foo.app", "com.example.foo");
        volume.makeFile(
            home + "/Library/LaunchAgents/agent.plist",
            "<plist version=\"1.0\"><dict><key>Label</key><string>com.example.foo</string></dict></plist>");
    }

    static Names namesIn(const json& object) {
        Names names;
        for (const auto& [name, value] : object.items()) names.push_back(name);
        return names;
    }

    const Names ofApplication{"bundleIdentifier", "id",   "isInstalled", "isSystemApplication",
                              "modifiedAt",       "name", "size",        "url",
                              "version"};
};

TEST_F(Documents, OfAListIsAnArrayOfApplications) {
    const auto list = document({"list", "--json"});
    ASSERT_TRUE(list.is_array());
    EXPECT_EQ(namesIn(list.at(0)), ofApplication);
}

TEST_F(Documents, OfAPlanHoldsTheApplicationItsItemsAndItsServices) {
    const auto plan = document({"plan", "Foo", "--json"});
    EXPECT_EQ(namesIn(plan), (Names{"application", "items", "runningServices"}));
    EXPECT_EQ(namesIn(plan.at("application")), ofApplication);
    const auto& bundle = plan.at("items").at(0);
    EXPECT_EQ(namesIn(bundle), (Names{"id", "kind", "requiresAdministrator", "size", "url"}));
    const auto& agent = plan.at("items").at(1);
    EXPECT_EQ(namesIn(agent), (Names{"detail", "id", "kind", "requiresAdministrator", "size", "url"}));
    EXPECT_EQ(agent.at("detail"), "com.example.foo");
    EXPECT_EQ(agent.at("kind"), "Launch Agent");
}

TEST_F(Documents, OfAPlanSaysWhyWhenItIsAsked) {
    const auto items = document({"plan", "Foo", "--why", "--json"}).at("items");
    EXPECT_EQ(items.at(0).at("why"), "The application itself");
    EXPECT_EQ(items.at(1).at("why"), "Mentions “com.example.foo”");
    const auto table = run({"plan", "Foo", "--why"}).output;
    EXPECT_NE(table.find("agent.plist (com.example.foo)\n    Mentions “com.example.foo”\n"), table.npos)
        << table;
    EXPECT_EQ(run({"plan", "Foo"}).output.find("Mentions"), table.npos);
}

TEST_F(Documents, OfADryRunHoldsTheItemsOfThePlanInItsOrder) {
    const auto dry = document({"remove", "Foo", "--dry-run", "--json"});
    EXPECT_EQ(namesIn(dry), Names{"items"});
    EXPECT_EQ(dry.at("items"), document({"plan", "Foo", "--json"}).at("items"));
}

TEST_F(Documents, OfARemovalHoldsWhatWentWhatStayedAndTheMessage) {
    // An identifier that is empty names the folder in which all applications keep theirs.
    makeApplication("/Applications/Empty.app", "");
    volume.makeDirectory(home + "/Library/Caches");
    const auto result = run({"remove", "Empty", "--yes", "--json"});
    EXPECT_EQ(result.status, 1);
    const auto removal = json::parse(result.output);
    EXPECT_EQ(namesIn(removal), (Names{"failed", "message", "removed"}));
    EXPECT_EQ(removal.at("removed"), json({"file:///Applications/Empty.app/"}));
    ASSERT_FALSE(removal.at("failed").empty());
    EXPECT_EQ(namesIn(removal.at("failed").at(0)), (Names{"reason", "url"}));
}

}  // namespace
}  // namespace orvane::test
