#include "Platform/MacDisks.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::chrono::seconds ample{60};

std::vector<std::string> roots(const MacDisks& found) {
    std::vector<std::string> roots;
    for (const auto& disk : found.disks) roots.push_back(disk.root);
    return roots;
}

class MacDisksTest : public testing::Test {
  protected:
    /// A folder that is a disk, with these homes.
    std::string makeDisk(const std::string& name, const std::vector<std::string>& homes = {"sample"}) const {
        for (const auto* folder : {"/Applications", "/Library", "/Users/Shared", "/Users/Guest"})
            directory.makeDirectory(name + folder);
        for (const auto& home : homes) directory.makeDirectory(name + ("/Users/" + home));
        return directory.path(name);
    }
    static MacDisks look(const std::vector<std::string>& folders) { return macDisksAmong(folders, ample); }

    TemporaryDirectory directory;
};

TEST_F(MacDisksTest, ADiskIsToldByItsFolders) {
    const auto disk = makeDisk("disk", {"ben", "anna"});
    const auto found = look({disk});
    ASSERT_EQ(found.disks.size(), 1U);
    EXPECT_EQ(found.disks[0].root, std::filesystem::canonical(disk));
    EXPECT_THAT(found.disks[0].homes, ElementsAre(MacHome{"/Users/anna", true}, MacHome{"/Users/ben", true}));
    EXPECT_GT(found.disks[0].capacity, 0);
    EXPECT_GT(found.disks[0].available, 0);
    EXPECT_LE(found.disks[0].available, found.disks[0].capacity);
    EXPECT_FALSE(found.disks[0].isReadOnly);
    EXPECT_THAT(found.silent, IsEmpty());
}

TEST_F(MacDisksTest, SystemWillDoInPlaceOfLibrary) {
    const auto disk = makeDisk("disk");
    std::filesystem::rename(disk + "/Library", disk + "/System");
    EXPECT_EQ(look({disk}).disks.size(), 1U);
}

TEST_F(MacDisksTest, AFolderThatLacksOneOfThemIsNone) {
    for (const auto* missing : {"/Applications", "/Users", "/Library"}) {
        const auto disk = makeDisk("disk");
        std::filesystem::remove_all(disk + missing);
        EXPECT_THAT(look({disk}).disks, IsEmpty()) << missing;
    }
    EXPECT_THAT(look({directory.path("nothing"), directory.makeFile("file")}).disks, IsEmpty());
}

TEST_F(MacDisksTest, LinksAndFilesDoNotCount) {
    for (const auto* name : {"/Applications", "/Users", "/Library"}) {
        const auto disk = makeDisk("disk");
        const auto elsewhere = makeDisk("elsewhere");
        std::filesystem::remove_all(disk + name);
        std::filesystem::create_directory_symlink(elsewhere + name, disk + name);
        EXPECT_THAT(look({disk}).disks, IsEmpty()) << name;
        std::filesystem::remove(disk + name);
        std::filesystem::create_directory_symlink("." + std::string(name) + "Real", disk + name);
        directory.makeDirectory("disk" + std::string(name) + "Real");
        EXPECT_THAT(look({disk}).disks, IsEmpty()) << name << " within the disk";
        std::filesystem::remove(disk + name);
        directory.makeFile("disk" + std::string(name));
        EXPECT_THAT(look({disk}).disks, IsEmpty()) << name << " is a file";
        std::filesystem::remove(disk + name);
    }
}

TEST_F(MacDisksTest, AHomeThatIsALinkIsNobodys) {
    const auto disk = makeDisk("disk");
    std::filesystem::create_directory_symlink(disk + "/Users/sample", disk + "/Users/other");
    EXPECT_THAT(look({disk}).disks.at(0).homes, ElementsAre(MacHome{"/Users/sample", true}));
}

TEST_F(MacDisksTest, ADiskIsFoundOnceWhateverItIsCalled) {
    const auto disk = makeDisk("disk");
    std::filesystem::create_directory_symlink(disk, directory.path("alias"));
    EXPECT_THAT(roots(look({disk, directory.path("alias"), disk})),
                ElementsAre(std::filesystem::canonical(disk).string()));
}

TEST_F(MacDisksTest, TheMachineItselfIsNone) {
    EXPECT_THAT(look({"/", "/."}).disks, IsEmpty());
}

TEST_F(MacDisksTest, SomebodyElsesHomeIsNotOnesOwn) {
    if (!isRoot()) GTEST_SKIP() << "only root can act for somebody else";
    const auto disk = makeDisk("disk");
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
    asUnprivilegedUser([&] {
        EXPECT_THAT(look({disk}).disks.at(0).homes, ElementsAre(MacHome{"/Users/sample", false}));
    });
}

struct MountedMacDisks : MacDisksTest {
    void TestBody() override {}

    std::string mountMemory(const std::string& name) const {
        const auto place = directory.makeDirectory(name);
        EXPECT_EQ(::mount("tmpfs", place.c_str(), "tmpfs", 0, "size=8m"), 0);
        return place;
    }
};

PRIVATE_MOUNTS_TEST(MountedMacDisks, WhatIsMountedIsFoundWhateverItsName) {
    const auto place = mountMemory("Macintosh HD\n\\040'");
    EXPECT_THAT(mountedFolders(), Contains(place));
    EXPECT_THAT(roots(look(mountedFolders())), Not(Contains(place)));
    makeDisk("Macintosh HD\n\\040'");
    const auto found = look(mountedFolders());
    ASSERT_THAT(roots(found), Contains(place));
    for (const auto& disk : found.disks) {
        if (disk.root != place) continue;
        EXPECT_EQ(disk.capacity, 8 << 20);
        EXPECT_FALSE(disk.isReadOnly);
    }
}

PRIVATE_MOUNTS_TEST(MountedMacDisks, ADiskThatIsMountedTwiceIsFoundOnce) {
    mountMemory("disk");
    const auto disk = makeDisk("disk");
    const auto again = directory.makeDirectory("again");
    ASSERT_EQ(::mount(disk.c_str(), again.c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_THAT(mountedFolders(), Contains(again));
    const auto found = roots(look(mountedFolders()));
    EXPECT_EQ(std::ranges::count(found, disk) + std::ranges::count(found, again), 1);
}

PRIVATE_MOUNTS_TEST(MountedMacDisks, AReadOnlyMountIsSaidToBeOne) {
    mountMemory("disk");
    const auto disk = makeDisk("disk");
    ASSERT_EQ(::mount("", disk.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    EXPECT_TRUE(look({disk}).disks.at(0).isReadOnly);
}

PRIVATE_MOUNTS_TEST(MountedMacDisks, WhatTheKernelMakesUpIsNotAsked) {
    const auto place = directory.makeDirectory("devices");
    ASSERT_EQ(::mount("devpts", place.c_str(), "devpts", 0, "newinstance"), 0);
    EXPECT_THAT(mountedFolders(), Not(Contains(place)));
}

/// A file system whose server never answers, as one of a machine that is gone.
PRIVATE_MOUNTS_TEST(MountedMacDisks, AFolderThatDoesNotAnswerHoldsUpNobody) {
    // A machine in a folder may lack the device; where it may be made it is.
    const auto device = directory.path("device");
    ::mknod(device.c_str(), S_IFCHR | 0600, ::makedev(10, 229));
    int server = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (server < 0) server = ::open(device.c_str(), O_RDWR | O_CLOEXEC);
    const auto place = directory.makeDirectory("silent");
    const auto options = "fd=" + std::to_string(server) + ",rootmode=40000,user_id=0,group_id=0";
    if (server < 0 || ::mount("silent", place.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    const auto disk = makeDisk("disk");
    const auto began = std::chrono::steady_clock::now();
    // However long a disk that answers takes here, the other folder takes longer.
    MacDisks found;
    for (auto patience = std::chrono::milliseconds(300); found.disks.empty() && patience < ample;
         patience *= 2)
        found = macDisksAmong({place, disk}, patience);
    EXPECT_LT(std::chrono::steady_clock::now() - began, ample);
    EXPECT_THAT(found.silent, ElementsAre(place));
    EXPECT_THAT(roots(found), ElementsAre(disk));
    // It would keep whoever looks at it, so it is taken away first.
    ::umount2(place.c_str(), MNT_DETACH | MNT_FORCE);
    ::close(server);
}

}  // namespace
}  // namespace orvane::test
