#include <filesystem>

#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// An application of which one item lies in another: its identifier names a folder in that of its name.
class KeepOption : public CommandLineTest {
  protected:
    KeepOption() {
        makeApplication("/Applications/Foo.app", "Foo/inner");
        volume.makeFile(outer + "/letter", "a letter");
        volume.makeFile(inner + "/precious", "precious");
    }

    void expectOuterRefused(const json& removal) const {
        ASSERT_EQ(removal.at("failed").size(), 1) << removal;
        EXPECT_EQ(removal.at("failed").at(0).at("url"), "file://" + outer);
        EXPECT_EQ(removal.at("failed").at(0).at("reason"),
                  "Orvane does not remove this item, because something in it is to stay.");
        EXPECT_EQ(readFile(volume.path(inner + "/precious")), "precious");
        EXPECT_EQ(readFile(volume.path(outer + "/letter")), "a letter");
        EXPECT_FALSE(fs::exists(volume.path("/Applications/Foo.app")));
    }

    const std::string outer = home + "/Library/Caches/Foo";
    const std::string inner = outer + "/inner";
};

TEST_F(KeepOption, TakesOneValueSoThatTheApplicationMayFollowIt) {
    const std::vector<std::vector<std::string>> orders{
        {"remove", "--keep", inner, "Foo", "--dry-run", "--json"},
        {"remove", "Foo", "--keep", inner, "--dry-run", "--json"},
        {"remove", "--dry-run", "--keep", inner, "--json", "Foo"},
        {"remove", "--keep=" + inner, "Foo", "--dry-run", "--json"},
    };
    for (const auto& arguments : orders) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_EQ(document(arguments).at("items").size(), 2);
    }
    EXPECT_EQ(document({"remove", "--keep", inner, "--keep", outer, "Foo", "--dry-run", "--json"})
                  .at("items")
                  .size(),
              1);
    expectMisuse(run({"remove", "Foo", "--keep", inner, outer, "--dry-run"}));
    expectMisuse(run({"remove", "Foo", "--dry-run", "--keep"}));
}

TEST_F(KeepOption, KeepsWhatLiesInAnotherItem) {
    for (const auto& options : {std::vector<std::string>{}, {"--permanently"}}) {
        makeApplication("/Applications/Foo.app", "Foo/inner");
        std::vector<std::string> arguments{"remove", "Foo", "--yes", "--json", "--keep", inner};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto result = run(arguments);
        EXPECT_EQ(result.status, 1);
        expectOuterRefused(json::parse(result.output));
    }
}

TEST_F(KeepOption, KeepsItForAUserWithoutRightsToo) {
    giveToUnprivilegedUser(volume.path());
    for (const auto& entry : fs::recursive_directory_iterator(volume.path())) {
        giveToUnprivilegedUser(entry.path().string());
    }
    asUnprivilegedUser([&] {
        const auto result = run({"remove", "Foo", "--yes", "--json", "--permanently", "--keep", inner});
        EXPECT_EQ(result.status, 1);
        expectOuterRefused(json::parse(result.output));
    });
}

TEST_F(KeepOption, KeepsItWhereTheFixedFolderIsALink) {
    fs::rename(volume.path(home + "/Library/Caches"), volume.makeDirectory("/Volumes/Big") + "/Caches");
    volume.makeLink(home + "/Library/Caches", "/Volumes/Big/Caches");
    const auto result = run({"remove", "Foo", "--yes", "--json", "--keep", inner});
    EXPECT_EQ(result.status, 1);
    const auto removal = json::parse(result.output);
    ASSERT_EQ(removal.at("failed").size(), 1) << removal;
    EXPECT_EQ(readFile(volume.path("/Volumes/Big/Caches/Foo/inner/precious")), "precious");
    EXPECT_EQ(readFile(volume.path("/Volumes/Big/Caches/Foo/letter")), "a letter");
}

TEST_F(KeepOption, TakesEverythingWhereNothingIsToStay) {
    EXPECT_EQ(run({"remove", "Foo", "--yes", "--permanently"}).status, 0);
    EXPECT_FALSE(fs::exists(volume.path(outer)));
}

}  // namespace
}  // namespace orvane::test
