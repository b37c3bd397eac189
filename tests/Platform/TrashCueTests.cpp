#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "Platform/FileManager.h"
#include "Platform/Linux/TrashFolder.h"
#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A disk that fails at the very call at which it matters to a move to the Trash.
class TrashCue {
  protected:
    TrashCue() {
        mac_.makeFile("/Applications/Foo.app/file", "contents");
        mac_.makeDirectory(TestVolume::trash());
    }

    /// Moves the application to the Trash; `outcome` is that of each attempt, whose number it is given.
    template <typename Outcome>
    Result<void> trash(Outcome outcome) {
        Result<void> moved;
        onCue(
            {SYS_renameat2, SYS_renameat, SYS_rename},
            [&](const PendingCall& call) {
                EXPECT_EQ(call.number, SYS_renameat2);
                EXPECT_EQ(call.arguments[4], RENAME_NOREPLACE);
                EXPECT_EQ(call.text(1), "Foo.app");
                names_.push_back(call.text(3));
                return outcome(names_.size());
            },
            [&] { moved = trashItem(mac_.files(), url("/Applications/Foo.app")); });
        return moved;
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }
    mode_t modeOf(const std::string& path) const {
        struct stat status {};
        return ::lstat(at(path).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TestVolume mac_;
    /// The names that were tried in the Trash.
    std::vector<std::string> names_;
};

PRIVATE_MOUNTS_TEST(TrashCue, WhatCannotBeMovedStaysWholeAndNothingElseIsTried) {
    const auto before = mac_.listing();
    for (const int error : {EXDEV, EINVAL, EPERM, EIO, EBUSY, ENOSPC}) {
        names_.clear();
        EXPECT_EQ(trash([&](std::size_t) { return failWith(error); }).error().value(), error);
        EXPECT_THAT(names_, ElementsAre("Foo.app"));
        EXPECT_EQ(mac_.listing(), before);
    }
}

PRIVATE_MOUNTS_TEST(TrashCue, AnItemStaysWholeWhateverCannotBeLookedAt) {
    const auto before = mac_.listing();
    Result<void> moved;
    const auto failures = onEachFailure(
        {SYS_open, SYS_openat, SYS_openat2, SYS_newfstatat, SYS_statx, SYS_read, SYS_readlink}, EIO,
        [&] { moved = trashItem(mac_.files(), url("/Applications/Foo.app")); },
        [&] {
            if (moved) fs::rename(at(TestVolume::trash() + "/Foo.app"), at("/Applications/Foo.app"));
            EXPECT_EQ(mac_.listing(), before);
        });
    EXPECT_GT(failures, 3U);
    EXPECT_TRUE(moved);
}

PRIVATE_MOUNTS_TEST(TrashCue, ATakenNameLeadsToTheNextOne) {
    EXPECT_TRUE(trash([](std::size_t attempt) { return attempt < 12 ? failWith(EEXIST) : proceed; }));
    EXPECT_EQ(names_[0], "Foo.app");
    for (std::size_t i = 1; i < 12; ++i) EXPECT_EQ(names_[i], "Foo " + std::to_string(i + 1) + ".app");
    EXPECT_EQ(readFile(at(TestVolume::trash() + "/Foo 12.app/file")), "contents");
}

PRIVATE_MOUNTS_TEST(TrashCue, AFolderThatCannotBeMovedEvenWithItsOwnersRightsHasItsModeBack) {
    ASSERT_EQ(::chmod(at("/Applications/Foo.app").c_str(), 01410), 0);
    mode_t modeMeanwhile = 0;
    const auto moved = trash([&](std::size_t attempt) {
        if (attempt == 1) return failWith(EACCES);
        modeMeanwhile = modeOf("/Applications/Foo.app");
        return failWith(EIO);
    });
    EXPECT_EQ(moved.error(), std::errc::io_error);
    EXPECT_EQ(names_.size(), 2U);
    EXPECT_EQ(modeMeanwhile, 01610U);
    EXPECT_EQ(modeOf("/Applications/Foo.app"), 01410U);
}

PRIVATE_MOUNTS_TEST(TrashCue, OnlyAFolderOfOnesOwnThatMayNotBeChangedIsTriedAgain) {
    const auto expectOneAttempt = [&] {
        names_.clear();
        EXPECT_EQ(trash([](std::size_t) { return failWith(EACCES); }).error(), std::errc::permission_denied);
        EXPECT_EQ(names_.size(), 1U);
    };
    expectOneAttempt();
    if (!isRoot()) return;
    ASSERT_EQ(::chmod(at("/Applications/Foo.app").c_str(), 0500), 0);
    giveToUnprivilegedUser(at("/Applications/Foo.app"));
    expectOneAttempt();
}

PRIVATE_MOUNTS_TEST(TrashCue, WhereTheWayUpCannotBeSeenNothingIsMoved) {
    const auto before = mac_.listing();
    // Step by step up to the machine's root, from the item and from the Trash.
    int steps = 1;
    for (int failing = 1; failing <= steps; ++failing) {
        Result<void> moved;
        steps = 0;
        onCue(
            {SYS_openat},
            [&](const PendingCall& call) {
                return call.text(1) == ".." && ++steps == failing ? failWith(EACCES) : proceed;
            },
            [&] { moved = trashItem(mac_.files(), url("/Applications/Foo.app")); });
        if (moved) {
            EXPECT_EQ(failing, steps + 1) << "one step more than there are";
            EXPECT_GE(steps, 4 + 5) << "both ways have been gone";
            return;
        }
        EXPECT_EQ(moved.error(), std::errc::permission_denied);
        EXPECT_EQ(mac_.listing(), before);
        ++steps;
    }
    FAIL() << "it was never moved";
}

/// Something happens while the first Trash of a home is made.
class NewTrashCue {
  protected:
    NewTrashCue() { mac_.makeFile("/file"); }

    /// Moves a file to the Trash; `director` is shown the calls that make the Trash and look into it.
    template <typename Director>
    Result<void> trash(Director director) {
        Result<void> moved;
        onCue({SYS_mkdirat, SYS_openat, SYS_getdents64}, director,
              [&] { moved = trashItem(mac_.files(), url("/file")); });
        return moved;
    }
    static bool makesTrash(const PendingCall& call) {
        return call.number == SYS_mkdirat && call.text(1) == ".Trash";
    }
    void makeTrash() const { mac_.makeDirectory(TestVolume::trash()); }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(NewTrashCue, OneThatSomebodyElseWasFasterToMakeIsUsed) {
    EXPECT_TRUE(trash([&](const PendingCall& call) {
        if (makesTrash(call)) makeTrash();
        return proceed;
    }));
    EXPECT_TRUE(mac_.contains(TestVolume::trash() + "/file"));
}

PRIVATE_MOUNTS_TEST(NewTrashCue, OneThatCannotBeMadeIsAFailure) {
    const auto before = mac_.listing();
    for (const int error : {EACCES, EROFS, ENOSPC}) {
        const auto moved =
            trash([&](const PendingCall& call) { return makesTrash(call) ? failWith(error) : proceed; });
        EXPECT_EQ(moved.error().value(), error);
        EXPECT_EQ(mac_.listing(), before);
    }
}

/// The same on somebody else's disk, where the administrator makes the Trash beside its place.
class NewTrashForSomebodyCue : protected NewTrashCue {
  protected:
    NewTrashForSomebodyCue() {
        if (isRoot()) giveToUnprivilegedUser(mac_.machinePath(TestVolume::home()));
    }

    std::vector<std::string> homeContents() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mac_.machinePath(TestVolume::home()))) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    uid_t ownerOf(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(::lstat(mac_.machinePath(path).c_str(), &status), 0) << path;
        return status.st_uid;
    }
};

PRIVATE_MOUNTS_TEST(NewTrashForSomebodyCue, OneThatTheAdministratorDidNotMakeIsNotGivenAway) {
    if (!isRoot()) GTEST_SKIP() << "only root can act for somebody else";
    EXPECT_TRUE(trash([&](const PendingCall& call) {
        if (call.number == SYS_mkdirat) makeTrash();
        return proceed;
    }));
    EXPECT_EQ(ownerOf(TestVolume::trash()), 0U);
    EXPECT_THAT(homeContents(), ElementsAre(".Trash"));
}

PRIVATE_MOUNTS_TEST(NewTrashForSomebodyCue, WhatIsPutInItsPlaceIsNotGivenAway) {
    if (!isRoot()) GTEST_SKIP() << "only root can act for somebody else";
    std::string made;
    EXPECT_FALSE(trash([&](const PendingCall& call) {
        if (call.number == SYS_mkdirat) made = call.text(1);
        if (call.number == SYS_openat && !made.empty() && call.text(1) == made) {
            const auto place = TestVolume::home() + "/" + made;
            if (!mac_.contains("/moved")) {
                fs::rename(mac_.machinePath(place), mac_.machinePath("/moved"));
                mac_.makeFile(place + "/precious");
            }
        }
        return proceed;
    }));
    ASSERT_THAT(homeContents(), ElementsAre(made));
    EXPECT_TRUE(mac_.contains(TestVolume::home() + "/" + made + "/precious"));
    EXPECT_EQ(ownerOf(TestVolume::home() + "/" + made), 0U);
}

PRIVATE_MOUNTS_TEST(NewTrashForSomebodyCue, WhatCannotBeLookedIntoIsNotGivenAway) {
    if (!isRoot()) GTEST_SKIP() << "only root can act for somebody else";
    EXPECT_FALSE(trash(
        [&](const PendingCall& call) { return call.number == SYS_getdents64 ? failWith(EIO) : proceed; }));
    EXPECT_THAT(homeContents(), ElementsAre());
}

/// Things mounted on or in what is moved to the Trash.
class TrashMount {
  protected:
    TrashMount() {
        mac_.makeFile("/Applications/Foo.app/sub/file");
        mac_.makeFile("/Applications/Foo.app2/file");
        mac_.makeFile("/elsewhere/precious");
        mac_.makeDirectory(TestVolume::trash());
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }
    void bind(const std::string& what, const std::string& where) const {
        ASSERT_EQ(::mount(at(what).c_str(), at(where).c_str(), nullptr, MS_BIND, nullptr), 0) << where;
    }
    void expectBusy(const std::string& item) {
        const auto before = mac_.listing();
        const auto moved = trashItem(mac_.files(), url(item));
        ASSERT_FALSE(moved) << item;
        EXPECT_EQ(moved.error(), std::errc::device_or_resource_busy) << item << moved.error().message();
        EXPECT_EQ(mac_.listing(), before);
    }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(TrashMount, WhatHoldsAMountStays) {
    const auto place = mac_.makeDirectory("/Applications/Foo.app/sub/deeper/place");
    ASSERT_EQ(::mount("tmpfs", place.c_str(), "tmpfs", 0, nullptr), 0);
    expectBusy("/Applications/Foo.app");
    expectBusy("/Applications/Foo.app/sub");
    expectBusy("/Applications/Foo.app/sub/deeper");
    EXPECT_TRUE(trashItem(mac_.files(), url("/Applications/Foo.app/sub/file"))) << "what does not is moved";
    ASSERT_EQ(::umount(place.c_str()), 0);
    EXPECT_TRUE(trashItem(mac_.files(), url("/Applications/Foo.app")));
}

PRIVATE_MOUNTS_TEST(TrashMount, WhatHoldsAFolderOrAFileOfTheSameFileSystemStays) {
    bind("/elsewhere", "/Applications/Foo.app/sub");
    expectBusy("/Applications/Foo.app");
    bind("/elsewhere/precious", "/Applications/Foo.app2/file");
    expectBusy("/Applications/Foo.app2");
}

PRIVATE_MOUNTS_TEST(TrashMount, WhatIsItselfMountedStays) {
    bind("/elsewhere", "/Applications/Foo.app/sub");
    expectBusy("/Applications/Foo.app/sub");
    bind("/elsewhere/precious", "/Applications/Foo.app2/file");
    expectBusy("/Applications/Foo.app2/file");
}

PRIVATE_MOUNTS_TEST(TrashMount, TheSameIsAnsweredBelowAnyOpenFolder) {
    mac_.makeFile(TestVolume::trash() + "/old/file");
    const auto open = [&](const std::string& path) {
        return FileDescriptor(::open(at(path).c_str(), O_PATH | O_DIRECTORY));
    };
    const auto trash = open(TestVolume::trash());
    const auto answer = [&](const std::string& folder, const char* name) {
        const auto checked = checkTrashable(open(folder).get(), name, trash.get());
        return checked ? 0 : checked.error().value();
    };
    EXPECT_EQ(answer("/Applications", "Foo.app"), 0);
    EXPECT_EQ(answer("/elsewhere", "precious"), 0);
    EXPECT_EQ(answer("/elsewhere", "missing"), ENOENT);
    EXPECT_EQ(answer("/", "Users"), EINVAL) << "holds the Trash";
    EXPECT_EQ(answer(TestVolume::home(), ".Trash"), EINVAL);
    EXPECT_EQ(answer(TestVolume::trash(), "old"), EINVAL);
    EXPECT_EQ(answer(TestVolume::trash() + "/old", "file"), EINVAL);
    bind("/elsewhere", "/Applications/Foo.app/sub");
    EXPECT_EQ(answer("/Applications", "Foo.app"), EBUSY);
    EXPECT_EQ(answer("/Applications/Foo.app", "sub"), EBUSY);
    EXPECT_EQ(answer("/Applications/Foo.app/sub", "precious"), 0)
        << "what lies on the mounted disk is not it";
}

PRIVATE_MOUNTS_TEST(TrashMount, WhatIsMountedBesideAnItemDoesNotHoldIt) {
    bind("/elsewhere", "/Applications/Foo.app2");
    EXPECT_TRUE(trashItem(mac_.files(), url("/Applications/Foo.app")));
}

PRIVATE_MOUNTS_TEST(TrashMount, MountsAreFoundUnderEveryName) {
    for (const std::string name : {"with blank", "a\ttab", "line\nbreak", "back\\slash", "\\040", "\xFF#"}) {
        const auto item = "/Applications/" + name + ".app";
        mac_.makeDirectory(item + "/" + name);
        bind("/elsewhere", item + "/" + name);
        expectBusy(item);
    }
}

PRIVATE_MOUNTS_TEST(TrashMount, AnItemOfAMountedDiskWithItsOwnTrashIsMoved) {
    bind("/", "/elsewhere");
    const auto mounted = Volume::open(at("/elsewhere")).value();
    const auto files = makeFileManager(mounted, TestVolume::home(), "/");
    EXPECT_TRUE(trashItem(*files, url("/Applications/Foo.app")));
    EXPECT_TRUE(mac_.contains(TestVolume::trash() + "/Foo.app/sub/file"));
}

}  // namespace
}  // namespace orvane::test
