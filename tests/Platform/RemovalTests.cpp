#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeBuilding.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// A removal that is wrong follows the links of these trees: to this machine's root, too.
class Removal {
  protected:
    /// Removes the item, and expects that nothing else has changed.
    void expectOnlyThisGoes(const std::string& path, const std::string& listingWithoutIt) {
        const auto removed = removeItem(mac_.files(), url(path));
        EXPECT_TRUE(removed) << removed.error().message();
        EXPECT_EQ(mac_.listing(), listingWithoutIt);
    }

    void change(const std::string& path, mode_t mode) {
        ASSERT_EQ(::chmod(mac_.machinePath(path).c_str(), mode), 0) << path;
    }

    mode_t modeOf(const std::string& path) const {
        struct stat status {};
        return ::lstat(mac_.machinePath(path).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(Removal, LeavesSiblingsAlone) {
    mac_.makeFile("/Applications/Bar.app/Contents/file");
    mac_.makeFile("/Applications/Foo.app2/file");
    mac_.makeFile("/Applications/Foo");
    const auto without = mac_.listing();
    mac_.makeFile("/Applications/Foo.app/Contents/MacOS/Foo");
    mac_.makeFile("/Applications/Foo.app/Contents/Resources/.hidden/file");
    mac_.makeDirectory("/Applications/Foo.app/Empty");
    expectOnlyThisGoes("/Applications/Foo.app", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesEveryKindOfEntry) {
    const auto without = mac_.listing();
    mac_.makeFile("/file");
    expectOnlyThisGoes("/file", without);
    mac_.makeFIFO("/fifo");
    expectOnlyThisGoes("/fifo", without);
    mac_.makeDirectory("/empty");
    expectOnlyThisGoes("/empty", without);
    mac_.makeLink("/dangling", "nothing");
    expectOnlyThisGoes("/dangling", without);
    mac_.makeFIFO("/folder/fifo");
    mac_.makeLink("/folder/dangling", "nothing");
    expectOnlyThisGoes("/folder", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesALinkAsALink) {
    mac_.makeFile("/folder/file");
    mac_.makeOutsideFile("file");
    const auto without = mac_.listing();
    mac_.makeLink("/link", "folder");
    expectOnlyThisGoes("/link", without);
    mac_.makeLink("/link", "/folder/");
    expectOnlyThisGoes("/link/", without);
    mac_.makeLink("/link", mac_.outside());
    expectOnlyThisGoes("/link", without);
}

PRIVATE_MOUNTS_TEST(Removal, NeverFollowsALinkInTheTree) {
    mac_.makeFile("/folder/file");
    mac_.makeOutsideFile("deep/file");
    const auto without = mac_.listing();
    mac_.makeLink("/tree/inside", "/folder");
    mac_.makeLink("/tree/up", "../folder");
    mac_.makeLink("/tree/outside", mac_.outside());
    mac_.makeLink("/tree/sub/circle", "..");
    mac_.makeLink("/tree/sub/root", "/");
    expectOnlyThisGoes("/tree", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesWhatLiesBehindALinkOfTheVolumeOnly) {
    mac_.makeFile("/real/other");
    mac_.makeLink("/link", "/real");
    const auto without = mac_.listing();
    mac_.makeFile("/real/tree/file");
    expectOnlyThisGoes("/link/tree", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesNamesOfEveryByte) {
    const auto without = mac_.listing();
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') mac_.makeFile("/tree/-" + std::string(1, static_cast<char>(byte)) + "/\n\xFF");
    }
    mac_.makeFile("/tree/-rf");
    mac_.makeFile("/tree/...");
    expectOnlyThisGoes("/tree", without);
    mac_.makeFile("/-rf *\n'\"\xC3");
    expectOnlyThisGoes("/-rf *\n'\"\xC3", without);
}

PRIVATE_MOUNTS_TEST(Removal, TheRootAndDotComponentsAreNeverRemoved) {
    mac_.makeFile("/folder/sub/file");
    const auto before = mac_.listing();
    for (const std::string path :
         {"/", "//", "/.", "/..", "/folder/.", "/folder/sub/..", "/folder/sub/../"}) {
        EXPECT_EQ(removeItem(mac_.files(), url(path)).error(), std::errc::invalid_argument) << path;
        EXPECT_EQ(trashItem(mac_.files(), url(path)).error(), std::errc::invalid_argument) << path;
    }
    EXPECT_EQ(mac_.listing(), before);
}

PRIVATE_MOUNTS_TEST(Removal, AMissingItemIsAnError) {
    EXPECT_EQ(removeItem(mac_.files(), url("/missing")).error(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(removeItem(mac_.files(), url("/missing/deeper")).error(), std::errc::no_such_file_or_directory);
}

PRIVATE_MOUNTS_TEST(Removal, HardLinksKeepTheOtherName) {
    const auto kept = mac_.makeFile("/kept", "contents");
    mac_.makeDirectory("/tree");
    fs::create_hard_link(kept, mac_.machinePath("/tree/name"));
    ASSERT_TRUE(removeItem(mac_.files(), url("/tree")));
    EXPECT_EQ(readFile(kept), "contents");
}

PRIVATE_MOUNTS_TEST(Removal, RemovesAHugeFolder) {
    const auto without = mac_.listing();
    const auto folder = mac_.makeDirectory("/huge");
    const auto file = mac_.makeFile("/huge/file");
    for (int i = 0; i < 30'000; ++i) ::link(file.c_str(), (folder + "/" + std::to_string(i)).c_str());
    expectOnlyThisGoes("/huge", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesAHugeDepthWithFewDescriptors) {
    const auto without = mac_.listing();
    makeDeepTree(mac_.makeDirectory("/deep"), 100'000);
    inChildProcess([&] {
        limitDescriptors(highestDescriptor() + 1 + 5);
        EXPECT_TRUE(removeItem(mac_.files(), url("/deep")));
    });
    EXPECT_EQ(mac_.listing(), without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesEverythingHoweverWideAndDeep) {
    const auto without = mac_.listing();
    makeWideDeepTree(mac_.makeDirectory("/tree"), 12, 90);
    expectOnlyThisGoes("/tree", without);
}

PRIVATE_MOUNTS_TEST(Removal, RemovesOwnFoldersThatMayNotBeChanged) {
    const auto without = mac_.listing();
    mac_.makeFile("/tree/0500/file");
    mac_.makeFile("/tree/0300/file");
    mac_.makeFile("/tree/0000/sub/file");
    mac_.makeDirectory("/tree/empty");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        change("/tree/0500", 0500);
        change("/tree/0300", 0300);
        change("/tree/0000/sub", 0400);
        change("/tree/0000", 0000);
        change("/tree/empty", 0000);
        change("/tree", 0500);
        const auto removed = removeItem(mac_.files(), url("/tree"));
        EXPECT_TRUE(removed) << removed.error().message();
    });
    EXPECT_EQ(mac_.listing(), without);
}

PRIVATE_MOUNTS_TEST(Removal, DoesNotChangeTheFolderThatHoldsTheItem) {
    mac_.makeFile("/folder/item/file");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        change("/folder", 0500);
        EXPECT_EQ(removeItem(mac_.files(), url("/folder/item")).error(), std::errc::permission_denied);
        EXPECT_EQ(modeOf("/folder"), 0500U);
        EXPECT_TRUE(mac_.contains("/folder/item"));
    });
}

PRIVATE_MOUNTS_TEST(Removal, OneFailingEntryDoesNotStopTheRest) {
    if (!isRoot()) GTEST_SKIP() << "only root can make files of somebody else";
    mac_.makeDirectory("/tree/a/kept");
    for (const std::string folder : {"a", "b", "c"}) mac_.makeFile("/tree/" + folder + "/file");
    mac_.giveEverythingToUnprivilegedUser();
    mac_.makeFile("/tree/a/kept/theirs");
    ASSERT_EQ(::chown(mac_.machinePath("/tree/a/kept").c_str(), 0, 0), 0);
    asUnprivilegedUser([&] {
        change("/tree/a", 0500);
        EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::permission_denied);
    });
    EXPECT_TRUE(mac_.contains("/tree/a/kept/theirs"));
    EXPECT_FALSE(mac_.contains("/tree/a/file"));
    EXPECT_FALSE(mac_.contains("/tree/b"));
    EXPECT_FALSE(mac_.contains("/tree/c"));
    EXPECT_EQ(modeOf("/tree/a"), 0500U) << "a folder that remains has its permissions back";
}

PRIVATE_MOUNTS_TEST(Removal, RemovesAnEmptyFolderThatMayNotBeRead) {
    if (!isRoot()) GTEST_SKIP() << "only root can make folders of somebody else";
    mac_.makeDirectory("/tree/closed");
    mac_.makeDirectory("/tree/full");
    mac_.giveEverythingToUnprivilegedUser();
    mac_.makeFile("/tree/full/file");
    for (const std::string folder : {"/tree/closed", "/tree/full"}) {
        ASSERT_EQ(::chown(mac_.machinePath(folder).c_str(), 0, 0), 0);
        change(folder, 0700);
    }
    asUnprivilegedUser([&] {
        EXPECT_TRUE(removeItem(mac_.files(), url("/tree/closed")));
        EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::permission_denied);
    });
    EXPECT_TRUE(mac_.contains("/tree/full/file"));
}

PRIVATE_MOUNTS_TEST(Removal, ALockedFileStaysAndIsTheReason) {
    const auto locked = mac_.makeFile("/tree/a/locked");
    mac_.makeFile("/tree/a/file");
    mac_.makeFile("/tree/b");
    if (!lock(locked)) GTEST_SKIP() << "no file can be locked here";
    EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::operation_not_permitted);
    unlock(locked);
    EXPECT_TRUE(mac_.contains("/tree/a/locked"));
    EXPECT_FALSE(mac_.contains("/tree/a/file"));
    EXPECT_FALSE(mac_.contains("/tree/b"));
}

PRIVATE_MOUNTS_TEST(Removal, RemovesNothingInFoldersThatTheKernelCannotKeepApart) {
    mac_.makeFile("/tree/sub/file");
    const auto before = mac_.listing();
    inChildProcess([&] {
        forbidSystemCall(SYS_openat2, ENOSYS);
        const auto machine = makeFileManager(Volume::open("/").value(), "/", "/");
        EXPECT_FALSE(removeItem(*machine, url(mac_.machinePath("tree"))));
    });
    EXPECT_EQ(mac_.listing(), before);
}

}  // namespace
}  // namespace orvane::test
