#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class RemoveCommand : public CommandLineTest {
  protected:
    RemoveCommand() {
        makeApplication("/Applications/Foo.app", "com.example.foo");
        makeApplication("/Applications/Other.app", "com.example.other");
        volume.makeFile(home + "/Library/Caches/com.example.foo/data", std::string(5000, 'c'));
        volume.makeFile(home + "/Library/Caches/com.example.other/data", std::string(5000, 'c'));
        volume.makeFile(home + "/Library/Preferences/com.example.foo.plist", "preferences");
        volume.makeFile(home + "/Documents/letter.txt", "a letter");
        run({"list"});
    }

    /// Every entry but the program's own file, whose size changes.
    std::string treeWithoutCatalog() const {
        std::istringstream lines(volume.listing());
        std::string tree;
        for (std::string line; std::getline(lines, line);) {
            if (!line.ends_with("/applications.json")) tree += line + '\n';
        }
        return tree;
    }

    bool exists(const std::string& path) const {
        return fs::symlink_status(volume.path(path)).type() != fs::file_type::not_found;
    }
};

TEST_F(RemoveCommand, PlansWhatBelongsToTheApplication) {
    const auto plan = document({"plan", "Foo", "--json"});
    EXPECT_EQ(plan.at("application").at("id"), "/Applications/Foo.app");
    ASSERT_EQ(plan.at("items").size(), 3);
    EXPECT_EQ(plan.at("items").at(0).at("kind"), "Application");
    EXPECT_EQ(plan.at("items").at(1).at("id"), home + "/Library/Caches/com.example.foo");
    EXPECT_EQ(plan.at("items").at(1).at("kind"), "Cache");
    EXPECT_EQ(plan.at("items").at(1).at("requiresAdministrator"), false);
    EXPECT_GE(plan.at("items").at(1).at("size").get<int>(), 5000);
    EXPECT_EQ(plan.at("items").at(2).at("kind"), "Preferences");
    EXPECT_EQ(plan.at("runningServices"), json::array());
}

TEST_F(RemoveCommand, FindsAnApplicationByPathByURLAndByName) {
    for (const auto* text : {"/Applications/Foo.app", "/Applications/Foo.app/",
                             "file:///Applications/Foo.app/", "file:///Applications/Foo.app", "Foo", "foo"}) {
        EXPECT_EQ(document({"plan", text, "--json"}).at("application").at("id"), "/Applications/Foo.app")
            << text;
    }
}

TEST_F(RemoveCommand, FindsAnApplicationThatIsNotInTheSavedListYet) {
    makeApplication("/Applications/New.app", "com.example.new");
    EXPECT_EQ(document({"plan", "New", "--json"}).at("application").at("id"), "/Applications/New.app");
}

TEST_F(RemoveCommand, MovesTheApplicationAndItsFilesToTheTrashAndNothingElse) {
    const auto result = run({"remove", "Foo", "--yes"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(result.output.ends_with("Moved 3 item(s) to Trash.\n")) << result.output;
    EXPECT_FALSE(exists("/Applications/Foo.app"));
    EXPECT_FALSE(exists(home + "/Library/Caches/com.example.foo"));
    EXPECT_TRUE(exists(home + "/.Trash/Foo.app/Contents/Info.plist"));
    EXPECT_TRUE(exists(home + "/.Trash/com.example.foo/data"));
    EXPECT_TRUE(exists(home + "/.Trash/com.example.foo.plist"));
    EXPECT_TRUE(exists("/Applications/Other.app/Contents/Info.plist"));
    EXPECT_TRUE(exists(home + "/Library/Caches/com.example.other/data"));
    EXPECT_TRUE(exists(home + "/Documents/letter.txt"));
}

TEST_F(RemoveCommand, MarksTheRemovedApplicationInTheSavedCatalog) {
    run({"remove", "Foo", "--yes"});
    const auto catalog =
        json::parse(readFile(volume.path(home + "/Library/Application Support/Orvane/applications.json")));
    ASSERT_EQ(catalog.size(), 2);
    EXPECT_EQ(catalog.at(0).at("name"), "Foo");
    EXPECT_EQ(catalog.at(0).at("isInstalled"), false);
    EXPECT_EQ(catalog.at(1).at("isInstalled"), true);
}

TEST_F(RemoveCommand, DeletesForGood) {
    const auto removal = document({"remove", "Foo", "--yes", "--permanently", "--json"});
    EXPECT_EQ(removal.at("message"), "Deleted 3 item(s) permanently.");
    EXPECT_EQ(removal.at("failed"), json::array());
    EXPECT_EQ(removal.at("removed"),
              json({"file:///Applications/Foo.app/", "file:///Users/sample/Library/Caches/com.example.foo",
                    "file:///Users/sample/Library/Preferences/com.example.foo.plist"}));
    EXPECT_FALSE(exists("/Applications/Foo.app"));
    EXPECT_TRUE(fs::is_empty(volume.path(home + "/.Trash")));
}

TEST_F(RemoveCommand, KeepsWhatIsToStay) {
    const auto removal =
        document({"remove", "Foo", "--yes", "--json", "--keep", home + "/Library/Caches/com.example.foo",
                  "--keep", "file:///Users/sample/Library/Preferences/com.example.foo.plist"});
    EXPECT_EQ(removal.at("message"), "Moved 1 item(s) to Trash.");
    EXPECT_TRUE(exists(home + "/Library/Caches/com.example.foo/data"));
    EXPECT_TRUE(exists(home + "/Library/Preferences/com.example.foo.plist"));
}

TEST_F(RemoveCommand, ADryRunShowsTheItemsAndChangesNothing) {
    const auto before = volume.listing();
    const auto dry = document({"remove", "Foo", "--dry-run", "--json", "--keep", "/Applications/Foo.app"});
    ASSERT_EQ(dry.at("items").size(), 2);
    EXPECT_EQ(dry.at("items").at(0).at("id"), home + "/Library/Caches/com.example.foo");
    EXPECT_EQ(run({"remove", "Foo", "--dry-run"}).status, 0);
    EXPECT_EQ(volume.listing(), before);
}

TEST_F(RemoveCommand, NothingButARemovalChangesTheSavedCatalog) {
    const auto file = home + "/Library/Application Support/Orvane/applications.json";
    const auto saved = readFile(volume.path(file));
    fs::remove_all(volume.path("/Applications/Other.app"));
    makeApplication("/Applications/New.app", "com.example.new");
    const auto before = volume.listing();
    for (const auto& arguments :
         {std::vector<std::string>{"plan", "Foo"}, {"plan", "New"}, {"remove", "New", "--dry-run"}}) {
        EXPECT_EQ(run(arguments).status, 0);
    }
    runOnTerminal(command({"remove", "New"}), "n\n");
    EXPECT_EQ(readFile(volume.path(file)), saved);

    fs::remove_all(volume.path(home + "/Library/Application Support"));
    const auto without = volume.listing();
    EXPECT_EQ(run({"remove", "New", "--dry-run"}).status, 0);
    EXPECT_EQ(volume.listing(), without);
    EXPECT_NE(without, before);
}

TEST_F(RemoveCommand, MarksARemovedApplicationThatTheSavedCatalogDidNotKnow) {
    makeApplication("/Applications/New.app", "com.example.new");
    EXPECT_EQ(run({"remove", "New", "--yes"}).status, 0);
    const auto listed = document({"list", "--json"});
    ASSERT_EQ(listed.size(), 3);
    EXPECT_EQ(listed.at(1).at("id"), "/Applications/New.app");
    EXPECT_EQ(listed.at(1).at("isInstalled"), false);
}

TEST_F(RemoveCommand, NoAnswerIsANo) {
    const auto before = volume.listing();
    for (const auto* answer : {"\x04", "\n", "yess\n", "\xff\n"}) {
        SCOPED_TRACE(testing::PrintToString(answer));
        const auto result = runOnTerminal(command({"remove", "Foo"}), answer);
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.output.find("nothing was removed"), std::string::npos) << result.output;
        EXPECT_EQ(volume.listing(), before);
    }
}

TEST_F(RemoveCommand, AsksOnATerminal) {
    const auto before = volume.listing();
    const auto no = runOnTerminal(command({"remove", "Foo"}), "n\n");
    EXPECT_EQ(no.status, 0);
    EXPECT_NE(no.output.find("[y/N]"), std::string::npos) << no.output;
    EXPECT_EQ(volume.listing(), before);

    const auto yes = runOnTerminal(command({"remove", "Foo"}), "y\n");
    EXPECT_EQ(yes.status, 0);
    EXPECT_NE(yes.output.find("Moved 3 item(s) to Trash."), std::string::npos) << yes.output;
    EXPECT_FALSE(exists("/Applications/Foo.app"));
}

TEST_F(RemoveCommand, RemovesFilesWithHostileNames) {
    for (const std::string name :
         {"-rf", "a'b", "a\"b", "a\nb", "a;b", "$(x)", "\xff\xfe", "e\xcc\x81", "-", "~"}) {
        SCOPED_TRACE(name);
        makeApplication("/Applications/" + name + ".app", "com.example.hostile");
        volume.makeFile(home + "/Library/Logs/" + name + "/log");
        const auto rescanned = document({"list", "--rescan", "--json"});
        std::string url;
        for (const auto& application : rescanned) {
            if (application.at("bundleIdentifier") == "com.example.hostile" &&
                application.at("isInstalled") == true) {
                url = application.at("url");
            }
        }
        EXPECT_EQ(run({"remove", "--yes", "--permanently", "--", url}).status, 0);
        EXPECT_FALSE(exists("/Applications/" + name + ".app"));
        EXPECT_FALSE(exists(home + "/Library/Logs/" + name));
    }
    EXPECT_TRUE(exists("/Applications/Other.app"));
}

TEST_F(RemoveCommand, LeavesWhatALinkOnTheVolumePointsTo) {
    const TemporaryDirectory outside;
    outside.makeFile("treasure/gold");
    volume.makeLink(home + "/Library/Logs/Foo", outside.path("treasure"));
    volume.makeLink("/Applications/Foo.app/Contents/out", outside.path("treasure"));
    const auto before = outside.listing();
    EXPECT_EQ(run({"remove", "Foo", "--yes", "--permanently"}).status, 0);
    EXPECT_EQ(outside.listing(), before);
}

TEST_F(RemoveCommand, RefusesToRemoveAFolderThatOtherApplicationsShare) {
    makeApplication("/Applications/Empty.app", "");
    const auto before = [&] { return exists(home + "/Library/Caches/com.example.other/data"); };
    ASSERT_TRUE(before());
    const auto result = run({"remove", "Empty", "--yes", "--permanently"});
    EXPECT_EQ(result.status, 1) << result.error;
    EXPECT_TRUE(exists(home + "/Library/Caches/com.example.other/data"));
    EXPECT_TRUE(exists(home + "/Library/Preferences/com.example.foo.plist"));
    EXPECT_FALSE(exists("/Applications/Empty.app"));
}

TEST_F(RemoveCommand, RefusesProtectedFoldersThatAForgedCatalogNames) {
    volume.makeDirectory("/Library/LaunchDaemons");
    volume.makeLink("/Users/alias", "sample");
    // Each names one of them: itself, through a link, by dot components plain or encoded.
    const std::vector<std::string> forged{"/",
                                          "/Users",
                                          "/Users/sample",
                                          "/Applications",
                                          "/Library/LaunchDaemons",
                                          "/Users/sample/.Trash",
                                          "/Users/sample/Library/Caches",
                                          "/Users/alias/Library/Preferences",
                                          "/Users/sample/Library/Caches/./",
                                          "/Applications/Foo.app/..",
                                          "/Applications/Foo.app/%2E%2E/%2e%2e/Users/sample/Documents"};
    auto catalog = json::array();
    for (std::size_t i = 0; i < forged.size(); ++i) {
        catalog.push_back({{"url", "file://" + forged[i]},
                           {"name", "Forged " + std::to_string(i)},
                           {"version", "1"},
                           {"size", 1},
                           {"isSystemApplication", false},
                           {"isInstalled", true}});
    }
    const auto file = home + "/Library/Application Support/Orvane/applications.json";
    const auto run = [&](std::size_t number, std::vector<std::string> options) {
        volume.makeFile(file, catalog.dump());
        options.insert(options.begin(), {"remove", "Forged " + std::to_string(number), "--yes", "--json"});
        return CommandLineTest::run(options);
    };
    volume.makeFile(file);
    const auto before = treeWithoutCatalog();
    for (std::size_t i = 0; i < forged.size(); ++i) {
        for (const auto& options : {std::vector<std::string>{}, {"--permanently"}}) {
            const auto result = run(i, options);
            EXPECT_EQ(result.status, 1) << forged[i] << result.error << result.output;
            const auto removal = json::parse(result.output, nullptr, false);
            ASSERT_TRUE(removal.is_object()) << forged[i];
            EXPECT_TRUE(removal.at("removed").empty()) << forged[i] << removal;
            EXPECT_FALSE(removal.at("failed").empty()) << forged[i];
            EXPECT_EQ(treeWithoutCatalog(), before) << forged[i];
        }
    }
}

TEST_F(RemoveCommand, ReportsAnItemThatCannotBeRemovedWithStatusOne) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may remove everything";
    volume.makeFile(home + "/Library/Logs/Foo/log");
    fs::permissions(volume.path(home + "/Library/Logs"), fs::perms::owner_read | fs::perms::owner_exec);
    const ProgramOptions withoutTools{{{"PATH", "/nonexistent"}}, ""};
    const auto result = run({"remove", "Foo", "--yes", "--json"}, withoutTools);
    const auto removal = json::parse(result.output);
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(removal.at("failed").size(), 1);
    EXPECT_EQ(removal.at("failed").at(0).at("url"), "file:///Users/sample/Library/Logs/Foo");
    EXPECT_EQ(removal.at("message"),
              "Moved 3 item(s) to Trash. 1 item(s) could not be removed. Locked items may require "
              "administrator access.");
}

}  // namespace
}  // namespace orvane::test
