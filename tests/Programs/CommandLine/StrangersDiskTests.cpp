#include <sys/stat.h>

#include <filesystem>

#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

const char* const isNoApplication = "Orvane does not remove this item, because it is not an application.";
const char* const isSystems = "Orvane does not remove this item, because it belongs to the system.";
const char* const isProtected = "Orvane does not remove this folder, because other applications use it.";
const char* const isLinked = "Orvane does not remove this item, because its path leads through a link.";

/// A disk whose catalog and bundles say what they like.
class StrangersDisk : public CommandLineTest {
  protected:
    StrangersDisk() {
        volume.makeFile(home + "/Documents/letter.txt", "a letter");
        volume.makeFile("/Users/Guest/Library/Foo.app/file");
        volume.makeFile("/System/Applications/Mail.app/file");
        volume.makeFile("/Applications/Foo.apps/file");
        volume.makeFile("/Volumes/Data/file");
        volume.makeLink("/Applications/Way", "/Users/Guest/Library");
    }

    void giveEverythingToUser() const {
        giveToUnprivilegedUser(volume.path());
        for (const auto& entry : fs::recursive_directory_iterator(volume.path())) {
            giveToUnprivilegedUser(entry.path().string());
        }
    }

    void saveRecordOf(const std::string& path) const {
        const json record{{"url", "file://" + path},      {"name", "Forged"},   {"version", "1"}, {"size", 1},
                          {"isSystemApplication", false}, {"isInstalled", true}};
        volume.makeFile(home + "/Library/Application Support/Orvane/applications.json",
                        json::array({record}).dump());
    }

    void expectForgeriesRefused() const {
        const std::vector<std::pair<std::string, std::string>> forgeries{
            {"/", isProtected},
            {"/Users/Guest", isProtected},
            {"/Users/sample", isProtected},
            {"/Volumes", isProtected},
            {"/Users/sample/Documents", isNoApplication},
            {"/Applications/Foo.apps", isNoApplication},
            {"/System/Applications/Mail.app", isSystems},
            {"/Applications/Way/Foo.app", isLinked},
        };
        for (const auto& [path, reason] : forgeries) {
            SCOPED_TRACE(path);
            for (const auto& options : {std::vector<std::string>{}, {"--permanently"}}) {
                saveRecordOf(path);
                const auto before = listingWithoutCatalog();
                std::vector<std::string> arguments{"remove", "Forged", "--yes", "--json"};
                arguments.insert(arguments.end(), options.begin(), options.end());
                const auto result = run(arguments);
                EXPECT_EQ(result.status, 1) << result.error;
                const auto removal = json::parse(result.output, nullptr, false);
                ASSERT_TRUE(removal.is_object()) << result.output;
                EXPECT_EQ(removal.at("removed"), json::array());
                ASSERT_EQ(removal.at("failed").size(), 1) << removal;
                EXPECT_EQ(removal.at("failed").at(0).at("reason"), reason);
                EXPECT_EQ(listingWithoutCatalog(), before);
            }
        }
    }

    std::string listingWithoutCatalog() const {
        std::istringstream lines(volume.listing());
        std::string listing;
        for (std::string line; std::getline(lines, line);) {
            if (line.find("/Orvane") == std::string::npos) listing += line + '\n';
        }
        return listing;
    }

    std::vector<std::string> plannedPaths(const std::string& application) const {
        std::vector<std::string> paths;
        const auto items = document({"plan", application, "--json"}).at("items");
        for (const auto& item : items) paths.push_back(item.at("id"));
        return paths;
    }
};

TEST_F(StrangersDisk, ItsCatalogMakesNoApplicationOfAFolder) {
    expectForgeriesRefused();
}

TEST_F(StrangersDisk, ItsCatalogMakesNoApplicationOfAFolderForAUserWithoutRights) {
    giveEverythingToUser();
    asUnprivilegedUser([&] { expectForgeriesRefused(); });
}

TEST_F(StrangersDisk, WhatItsCatalogCallsAnApplicationHasNoNameToLookFor) {
    volume.makeFile(home + "/Library/Caches/sample/file");
    volume.makeFile(home + "/Library/Group Containers/sample/file");
    volume.makeFile("/Library/LaunchDaemons/a.plist", "/Users/sample/bin/daemon");
    saveRecordOf("/Users/sample");
    EXPECT_EQ(plannedPaths("Forged"), std::vector<std::string>{"/Users/sample"});
}

TEST_F(StrangersDisk, AnIdentifierLeadsOverNoLink) {
    volume.makeLink(home + "/Library/Caches/x", "../../Documents");
    volume.makeLink(home + "/Library/Containers/x", "/Users/Guest");
    makeApplication("/Applications/Foo.app", "x/letter.txt");
    EXPECT_EQ(plannedPaths("Foo"), std::vector<std::string>{"/Applications/Foo.app"});
    EXPECT_EQ(run({"remove", "Foo", "--yes", "--permanently"}).status, 0);
    EXPECT_EQ(readFile(volume.path(home + "/Documents/letter.txt")), "a letter");
    EXPECT_TRUE(fs::exists(volume.path("/Users/Guest/Library/Foo.app/file")));
}

TEST_F(StrangersDisk, FixedFoldersMayBeLinks) {
    volume.makeFile("/Volumes/Data/Caches/com.example.foo/file");
    volume.makeLink(home + "/Library/Caches", "/Volumes/Data/Caches");
    makeApplication("/Applications/Foo.app", "com.example.foo");
    EXPECT_EQ(run({"remove", "Foo", "--yes"}).status, 0);
    EXPECT_FALSE(fs::exists(volume.path("/Volumes/Data/Caches/com.example.foo")));
    EXPECT_TRUE(fs::exists(volume.path(home + "/.Trash/com.example.foo/file")));
}

TEST_F(StrangersDisk, ABundleOfDotsIsAnApplication) {
    volume.makeFile("/Applications/....app/file");
    volume.makeFile(home + "/Library/Caches/.../file");
    saveRecordOf("/Applications/....app");
    EXPECT_EQ(plannedPaths("Forged"),
              (std::vector<std::string>{"/Applications/....app", home + "/Library/Caches/..."}));
    EXPECT_EQ(run({"remove", "Forged", "--yes", "--permanently"}).status, 0);
    EXPECT_FALSE(fs::exists(volume.path("/Applications/....app")));
    EXPECT_FALSE(fs::exists(volume.path(home + "/Library/Caches/...")));
}

TEST_F(StrangersDisk, ABundleOfTwoDotsTakesNothingShared) {
    volume.makeFile("/Applications/...app/file");
    volume.makeFile(home + "/Library/Caches/com.example.other/file");
    volume.makeFile(home + "/Library/Logs/file");
    saveRecordOf("/Applications/...app");
    const auto result = run({"remove", "Forged", "--yes", "--permanently"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_FALSE(fs::exists(volume.path("/Applications/...app")));
    EXPECT_TRUE(fs::exists(volume.path(home + "/Library/Caches/com.example.other/file")));
    EXPECT_TRUE(fs::exists(volume.path(home + "/Library/Logs/file")));
}

TEST_F(StrangersDisk, TheAdministratorLeavesWhatHeMakesToTheDisksUser) {
    if (!isRoot()) GTEST_SKIP() << "only root can work for somebody else";
    makeApplication("/Applications/Foo.app", "com.example.foo");
    fs::remove(volume.path(home + "/.Trash"));
    giveEverythingToUser();
    ASSERT_EQ(run({"list"}).status, 0);
    ASSERT_EQ(run({"remove", "Foo", "--yes"}).status, 0);
    for (const auto* const path :
         {"/Library/Application Support", "/Library/Application Support/Orvane",
          "/Library/Application Support/Orvane/applications.json", "/.Trash", "/.Trash/Foo.app"}) {
        struct stat status {};
        ASSERT_EQ(::lstat(volume.path(home + path).c_str(), &status), 0) << path;
        EXPECT_EQ(status.st_uid, unprivilegedUser()) << path;
    }
    asUnprivilegedUser([&] {
        makeApplication("/Applications/New.app", "com.example.new");
        EXPECT_EQ(document({"list", "--rescan", "--json"}).size(), 3);
        EXPECT_EQ(document({"list", "--json"}).size(), 3) << "he can save his catalog, and read it";
    });
}

/// What cannot be shown is not done.
class UnshownPlan : public CommandLineTest {
  protected:
    ProgramResult runWithOutput(const std::string& redirection, std::vector<std::string> arguments) const {
        std::vector<std::string> whole{"/bin/sh", "-c", "exec \"$@\" " + redirection, "sh"};
        for (auto& argument : command(std::move(arguments))) whole.push_back(std::move(argument));
        return runProgram(whole);
    }
};

TEST_F(UnshownPlan, RemovesNothing) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    volume.makeFile(home + "/Library/Caches/com.example.foo/file");
    run({"list"});
    const auto before = volume.listing();
    for (const auto* const redirection : {">/dev/full", ">&-"}) {
        for (const auto& options : {std::vector<std::string>{}, {"--permanently"}}) {
            SCOPED_TRACE(redirection);
            std::vector<std::string> arguments{"remove", "Foo", "--yes"};
            arguments.insert(arguments.end(), options.begin(), options.end());
            const auto result = runWithOutput(redirection, arguments);
            EXPECT_EQ(result.status, 1);
            EXPECT_NE(result.error.find("nothing was removed"), std::string::npos) << result.error;
            EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
            EXPECT_EQ(volume.listing(), before);
        }
    }
    EXPECT_EQ(runWithOutput(">/dev/null", {"remove", "Foo", "--yes"}).status, 0);
}

}  // namespace
}  // namespace orvane::test
