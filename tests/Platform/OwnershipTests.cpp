#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/FileManager.h"
#include "Platform/Posix/Ownership.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr uid_t owner = 501;
constexpr gid_t group = 20;

/// A home that belongs to somebody else, on which the administrator works.
class AdministratorOnADisk : public testing::Test {
  protected:
    void SetUp() override {
        if (!isRoot()) GTEST_SKIP() << "only root can work for somebody else";
        give("/Users/sample");
    }

    void give(const std::string& path, uid_t user = owner, gid_t userGroup = group) const {
        ASSERT_EQ(::lchown(mac_.machinePath(path).c_str(), user, userGroup), 0) << path;
    }
    void expectOwner(const std::string& path, uid_t user = owner, gid_t userGroup = group) const {
        struct stat status {};
        ASSERT_EQ(::lstat(mac_.machinePath(path).c_str(), &status), 0) << path;
        EXPECT_EQ(status.st_uid, user) << path;
        EXPECT_EQ(status.st_gid, userGroup) << path;
    }
    Result<void> write(const std::string& path) const {
        return mac_.files().writeAtomically("new", url(path));
    }

    TestVolume mac_;
};

TEST_F(AdministratorOnADisk, MakesFoldersForTheOwnerOfTheFolderAroundThem) {
    const std::string support = "/Users/sample/Library/Application Support";
    ASSERT_TRUE(mac_.files().createDirectory(url(support + "/Orvane")));
    for (const auto& folder : {std::string("/Users/sample/Library"), support, support + "/Orvane"}) {
        expectOwner(folder);
    }
    ASSERT_TRUE(mac_.files().createDirectory(url("/Library/Orvane")));
    expectOwner("/Library/Orvane", 0, ::getegid());
}

TEST_F(AdministratorOnADisk, LeavesFoldersThatAreThereToTheirOwners) {
    mac_.makeDirectory("/Users/sample/Library/Orvane");
    give("/Users/sample/Library/Orvane", 502, 21);
    ASSERT_TRUE(mac_.files().createDirectory(url("/Users/sample/Library/Orvane")));
    expectOwner("/Users/sample/Library/Orvane", 502, 21);
    expectOwner("/Users/sample/Library", 0, ::getegid());
}

TEST_F(AdministratorOnADisk, SavesANewFileForTheOwnerOfItsFolder) {
    ASSERT_TRUE(write("/Users/sample/file"));
    expectOwner("/Users/sample/file");
    ASSERT_TRUE(write("/file"));
    expectOwner("/file", 0, ::getegid());
}

TEST_F(AdministratorOnADisk, LeavesAReplacedFileToItsOwner) {
    mac_.makeFile("/Users/sample/file", "old");
    give("/Users/sample/file", 502, 21);
    ASSERT_TRUE(write("/Users/sample/file"));
    expectOwner("/Users/sample/file", 502, 21);
}

TEST_F(AdministratorOnADisk, ALinkInTheFilesPlaceChoosesNoOwner) {
    mac_.makeFile("/theirs");
    mac_.makeLink("/Users/sample/file", "/theirs");
    ASSERT_TRUE(write("/Users/sample/file"));
    expectOwner("/Users/sample/file");
    expectOwner("/theirs", 0, ::getegid());
}

TEST_F(AdministratorOnADisk, MakesTheTrashForTheOwnerOfTheHome) {
    mac_.makeFile("/Applications/Foo.app/file");
    ASSERT_TRUE(trashItem(mac_.files(), url("/Applications/Foo.app")));
    expectOwner("/Users/sample/.Trash");
    struct stat status {};
    ASSERT_EQ(::stat(mac_.machinePath("/Users/sample/.Trash").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    expectOwner("/Users/sample/.Trash/Foo.app", 0, ::getegid());
}

TEST_F(AdministratorOnADisk, NobodyFindsAFolderThatHasNotYetItsOwner) {
    mac_.makeFile("/Applications/Foo.app/file");
    Result<void> moved;
    int gifts = 0;
    inChildProcess([&] {
        onCue(
            {SYS_fchown},
            [&](const PendingCall&) {
                EXPECT_FALSE(mac_.contains("/Users/sample/.Trash"));
                // Somebody else makes the Trash meanwhile, and uses it.
                mac_.makeFile("/Users/sample/.Trash/Other.app/file");
                ++gifts;
                return proceed;
            },
            [&] { moved = trashItem(mac_.files(), url("/Applications/Foo.app")); });
        EXPECT_EQ(gifts, 1);
        EXPECT_TRUE(moved);
        EXPECT_TRUE(mac_.contains("/Users/sample/.Trash/Foo.app/file"));
        EXPECT_TRUE(mac_.contains("/Users/sample/.Trash/Other.app/file"));
        const fs::directory_iterator entries(mac_.machinePath("/Users/sample"));
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
    });
}

TEST_F(AdministratorOnADisk, GivesNobodyAFolderThatHasTakenThePlaceOfTheNewOne) {
    for (const bool isSomebodyElses : {true, false}) {
        inChildProcess([&] {
            std::string place;
            Result<void> made;
            onCue(
                {SYS_openat},
                [&](const PendingCall& call) {
                    if (!place.empty() || !call.text(1).starts_with(".orvane-folder-")) return proceed;
                    place = "/Users/sample/" + call.text(1);
                    fs::remove(mac_.machinePath(place));
                    mac_.makeDirectory(place);
                    if (isSomebodyElses) {
                        give(place, 502, 21);
                    } else {
                        mac_.makeFile(place + "/secret");
                    }
                    return proceed;
                },
                [&] { made = mac_.files().createDirectory(url("/Users/sample/Library")); });
            ASSERT_FALSE(place.empty());
            EXPECT_EQ(made.error(), std::errc::permission_denied);
            EXPECT_FALSE(mac_.contains("/Users/sample/Library"));
            if (!isSomebodyElses) expectOwner(place, 0, ::getegid());
        });
    }
}

TEST_F(AdministratorOnADisk, AFolderThatCannotBeGivenAwayIsNotMade) {
    inChildProcess([&] {
        forbidSystemCall(SYS_fchown, EPERM);
        EXPECT_FALSE(mac_.files().createDirectory(url("/Users/sample/Library")));
        EXPECT_TRUE(fs::is_empty(mac_.machinePath("/Users/sample")));
    });
}

TEST_F(AdministratorOnADisk, SavesNothingThatCannotBeGivenAway) {
    inChildProcess([&] {
        forbidSystemCall(SYS_fchown, EPERM);
        EXPECT_EQ(write("/Users/sample/file").error(), std::errc::operation_not_permitted);
        EXPECT_TRUE(fs::is_empty(mac_.machinePath("/Users/sample")));
    });
}

TEST_F(AdministratorOnADisk, SweepsWhatItLeftInTheFoldersOwnersName) {
    const auto stale = mac_.makeFile("/Users/sample/.orvane-save-0123456789abcdef", "half");
    give("/Users/sample/.orvane-save-0123456789abcdef");
    mac_.makeFile("/Users/sample/.orvane-save-0123456789abcde0", "half");
    const auto foreign = mac_.makeFile("/Users/sample/.orvane-save-0123456789abcde1", "half");
    give("/Users/sample/.orvane-save-0123456789abcde1", 502, 21);
    ASSERT_TRUE(write("/Users/sample/file"));
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_FALSE(mac_.contains("/Users/sample/.orvane-save-0123456789abcde0"));
    EXPECT_TRUE(fs::exists(foreign));
}

TEST(Ownership, OfWhatAUserMakesIsTheUsersOwn) {
    const TestVolume mac;
    mac.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_TRUE(mac.files().createDirectory(url("/Users/sample/Library/Orvane")));
        ASSERT_TRUE(mac.files().writeAtomically("new", url("/Users/sample/Library/Orvane/file")));
        struct stat status {};
        ASSERT_EQ(::stat(mac.machinePath("/Users/sample/Library/Orvane/file").c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, unprivilegedUser());
    });
}

TEST(Ownership, AStaleSaveThatMayNotBeReadWhileItIsWrittenIsStillSwept) {
    const TestVolume mac;
    mac.makeFile("/Users/sample/file", "old");
    mac.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac.machinePath("/Users/sample/file").c_str(), 0200), 0);
        // The save ends before its file has its place.
        EXPECT_FALSE(succeedsInChildProcess([&] {
            forbidSystemCall(SYS_unlinkat, EPERM);
            forbidSystemCall(SYS_write, ENOSPC);
            if (!mac.files().writeAtomically("new", url("/Users/sample/file")))
                throw std::runtime_error("no");
        }));
        ASSERT_TRUE(mac.files().writeAtomically("new", url("/Users/sample/file")));
        const fs::directory_iterator entries(mac.machinePath("/Users/sample"));
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
    });
}

}  // namespace
}  // namespace orvane::test
