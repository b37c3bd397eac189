#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/FileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Trash : public testing::Test {
  protected:
    std::vector<std::string> trashed() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mac_.machinePath(TestVolume::trash()))) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    struct stat statusOf(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(::lstat(mac_.machinePath(path).c_str(), &status), 0) << path;
        return status;
    }

    std::string textAt(const std::string& path) const { return readFile(mac_.machinePath(path)); }

    /// Nothing moves, and the error is the one given.
    void expectFailure(const std::string& path, std::errc error) {
        const auto before = mac_.listing();
        const auto moved = trashItem(mac_.files(), url(path));
        ASSERT_FALSE(moved);
        EXPECT_EQ(moved.error(), error) << moved.error().message();
        EXPECT_EQ(mac_.listing(), before);
    }

    TestVolume mac_;
};

TEST_F(Trash, MovesAnItemWithAllThatItHolds) {
    mac_.makeFile("/Applications/Foo.app/Contents/Info.plist", "contents");
    mac_.makeFile("/Applications/Bar.app/file");
    ASSERT_TRUE(trashItem(mac_.files(), url("/Applications/Foo.app")));
    EXPECT_EQ(textAt(TestVolume::trash() + "/Foo.app/Contents/Info.plist"), "contents");
    EXPECT_FALSE(mac_.contains("/Applications/Foo.app"));
    EXPECT_TRUE(mac_.contains("/Applications/Bar.app/file"));
}

TEST_F(Trash, IsMadeForTheUserAloneWhereThereIsNone) {
    mac_.makeFile("/file");
    ASSERT_TRUE(trashItem(mac_.files(), url("/file")));
    const auto status = statusOf(TestVolume::trash());
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    EXPECT_EQ(status.st_uid, ::geteuid());
}

TEST_F(Trash, MovesALinkAsALink) {
    mac_.makeFile("/folder/file");
    mac_.makeLink("/link", "/folder");
    mac_.makeLink("/dangling", "nothing");
    ASSERT_TRUE(trashItem(mac_.files(), url("/link")));
    ASSERT_TRUE(trashItem(mac_.files(), url("/dangling")));
    EXPECT_TRUE(S_ISLNK(statusOf(TestVolume::trash() + "/link").st_mode));
    EXPECT_TRUE(S_ISLNK(statusOf(TestVolume::trash() + "/dangling").st_mode));
    EXPECT_TRUE(mac_.contains("/folder/file"));
}

TEST_F(Trash, CountsUpToAFreeName) {
    const std::vector<std::vector<std::string>> names{
        {"Foo.app", "Foo 2.app", "Foo 3.app"},
        {"com.example.foo", "com.example 2.foo", "com.example 3.foo"},
        {"Caches", "Caches 2", "Caches 3"},
        {".hidden", ".hidden 2", ".hidden 3"},
        {"Foo 2.txt", "Foo 2 2.txt", "Foo 2 3.txt"},
        {"a\n'\xFF.x", "a\n'\xFF 2.x", "a\n'\xFF 3.x"},
    };
    for (const auto& expected : names) {
        for (const auto& name : expected) {
            mac_.makeFile("/folder/" + expected.front(), name);
            ASSERT_TRUE(trashItem(mac_.files(), url("/folder/" + expected.front())));
            EXPECT_EQ(textAt(TestVolume::trash() + "/" + name), name);
        }
    }
    EXPECT_EQ(trashed().size(), 18U);
}

TEST_F(Trash, ADanglingLinkHoldsItsName) {
    mac_.makeLink(TestVolume::trash() + "/Foo.app", "nothing");
    mac_.makeLink(TestVolume::trash() + "/Foo 2.app", "/Foo.app");
    mac_.makeFile("/Foo.app");
    ASSERT_TRUE(trashItem(mac_.files(), url("/Foo.app")));
    EXPECT_THAT(trashed(), UnorderedElementsAre("Foo.app", "Foo 2.app", "Foo 3.app"));
}

TEST_F(Trash, MovesWhatLiesBehindALinkOfTheVolume) {
    mac_.makeFile("/real/file");
    mac_.makeLink("/link", "/real");
    ASSERT_TRUE(trashItem(mac_.files(), url("/link/file")));
    EXPECT_THAT(trashed(), UnorderedElementsAre("file"));
}

TEST_F(Trash, MovesNamesOfEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') continue;
        const auto name = "-" + std::string(1, static_cast<char>(byte));
        mac_.makeFile("/" + name);
        ASSERT_TRUE(trashItem(mac_.files(), url("/" + name))) << byte;
        EXPECT_TRUE(mac_.contains(TestVolume::trash() + "/" + name)) << byte;
    }
}

TEST_F(Trash, AMissingItemIsAnError) {
    expectFailure("/missing/deeper", std::errc::no_such_file_or_directory);
    expectFailure("/missing", std::errc::no_such_file_or_directory);
}

TEST_F(Trash, NeedsAHome) {
    mac_.makeFile("/file");
    fs::remove(mac_.machinePath(TestVolume::home()));
    expectFailure("/file", std::errc::no_such_file_or_directory);
}

TEST_F(Trash, ALinkIsNoTrash) {
    mac_.makeFile("/file");
    mac_.makeDirectory("/elsewhere");
    for (const auto& target : {std::string("/elsewhere"), mac_.outside(), std::string("nothing")}) {
        mac_.makeLink(TestVolume::trash(), target);
        expectFailure("/file", std::errc::not_a_directory);
        fs::remove(mac_.machinePath(TestVolume::trash()));
    }
}

TEST_F(Trash, AFileIsNoTrash) {
    mac_.makeFile("/file");
    mac_.makeFile(TestVolume::trash());
    expectFailure("/file", std::errc::not_a_directory);
}

TEST_F(Trash, AFolderOfSomebodyElseIsNoTrash) {
    if (!isRoot()) GTEST_SKIP() << "only root can make folders of somebody else";
    mac_.makeFile("/file");
    mac_.makeDirectory(TestVolume::trash());
    fs::permissions(mac_.machinePath(TestVolume::trash()), fs::perms::all);
    giveToUnprivilegedUser(mac_.machinePath(TestVolume::trash()));
    expectFailure("/file", std::errc::permission_denied);
    mac_.giveEverythingToUnprivilegedUser();
    ASSERT_EQ(::chown(mac_.machinePath(TestVolume::trash()).c_str(), 0, 0), 0);
    asUnprivilegedUser([&] { expectFailure("/file", std::errc::permission_denied); });
    // Not even where the home, too, is theirs and open to everybody.
    ASSERT_EQ(::chown(mac_.machinePath(TestVolume::home()).c_str(), 0, 0), 0);
    fs::permissions(mac_.machinePath(TestVolume::home()), fs::perms::all);
    asUnprivilegedUser([&] { expectFailure("/file", std::errc::permission_denied); });
}

TEST_F(Trash, TheAdministratorUsesTheTrashOfTheHomesOwner) {
    if (!isRoot()) GTEST_SKIP() << "only root can act for somebody else";
    giveToUnprivilegedUser(mac_.machinePath(TestVolume::home()));
    mac_.makeFile("/one");
    mac_.makeFile("/two");
    ASSERT_TRUE(trashItem(mac_.files(), url("/one")));
    EXPECT_EQ(statusOf(TestVolume::trash()).st_uid, unprivilegedUser()) << "and makes it for that user";
    ASSERT_TRUE(trashItem(mac_.files(), url("/two")));
    EXPECT_THAT(trashed(), UnorderedElementsAre("one", "two"));
}

TEST_F(Trash, TheTrashItselfIsNoItem) {
    mac_.makeFile(TestVolume::trash() + "/file");
    mac_.makeLink("/way", TestVolume::home());
    expectFailure(TestVolume::trash(), std::errc::invalid_argument);
    expectFailure("/way/.Trash", std::errc::invalid_argument);
}

TEST_F(Trash, WhatHoldsTheTrashIsNoItem) {
    mac_.makeFile(TestVolume::trash() + "/file");
    expectFailure(TestVolume::home(), std::errc::invalid_argument);
    expectFailure("/Users", std::errc::invalid_argument);
}

TEST_F(Trash, WhatLiesInTheTrashIsNoItem) {
    mac_.makeFile(TestVolume::trash() + "/Foo.app/Contents/file");
    mac_.makeLink("/way", TestVolume::trash() + "/Foo.app");
    expectFailure(TestVolume::trash() + "/Foo.app", std::errc::invalid_argument);
    expectFailure(TestVolume::trash() + "/Foo.app/Contents/file", std::errc::invalid_argument);
    expectFailure("/way/Contents", std::errc::invalid_argument);
}

TEST_F(Trash, ALinkToTheTrashIsAnItem) {
    mac_.makeDirectory(TestVolume::trash());
    mac_.makeLink("/link", TestVolume::trash());
    ASSERT_TRUE(trashItem(mac_.files(), url("/link")));
    EXPECT_THAT(trashed(), UnorderedElementsAre("link"));
}

TEST_F(Trash, ANameThatLeavesNoRoomForTheNumberIsAnErrorAndNothingMoves) {
    const std::string name(255, 'n');
    mac_.makeFile("/" + name);
    mac_.makeFile(TestVolume::trash() + "/" + name);
    expectFailure("/" + name, std::errc::filename_too_long);
}

TEST_F(Trash, MovesAnOwnFolderThatMayNotBeChangedAndKeepsItSo) {
    mac_.makeFile("/Foo.app/file");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac_.machinePath("/Foo.app").c_str(), 0500), 0);
        const auto moved = trashItem(mac_.files(), url("/Foo.app"));
        EXPECT_TRUE(moved) << moved.error().message();
        EXPECT_EQ(statusOf(TestVolume::trash() + "/Foo.app").st_mode & 07777, 0500U);
    });
}

TEST_F(Trash, LeavesWhatTheUserMayNotMove) {
    mac_.makeFile("/closed/file");
    mac_.makeDirectory("/closed/folder");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        mac_.makeDirectory(TestVolume::trash());
        ASSERT_EQ(::chmod(mac_.machinePath("/closed/folder").c_str(), 0500), 0);
        ASSERT_EQ(::chmod(mac_.machinePath("/closed").c_str(), 0500), 0);
        expectFailure("/closed/file", std::errc::permission_denied);
        expectFailure("/closed/folder", std::errc::permission_denied);
        EXPECT_THAT(trashed(), IsEmpty());
    });
}

}  // namespace
}  // namespace orvane::test
