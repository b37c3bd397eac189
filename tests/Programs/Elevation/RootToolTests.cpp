#include "Programs/Elevation/RootTool.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <sstream>

#include "Platform/Linux/SealedMemory.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Programs/Elevation/OrderFixture.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::StartsWith;

class RootToolSteps : protected OrderVolume {
  protected:
    /// One step of an order; what it says, which is nothing when all is well.
    std::string step(const RemovalOrder& order, const std::vector<std::string>& arguments, int expected = 0) {
        if (!moved_) moved_ = sharedMemory(100 * sizeof(FileIdentity)).value();
        std::ostringstream err;
        StepDescriptors descriptors{
            FileDescriptor(::open(volume_.machinePath("/").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
            FileDescriptor(::fcntl(moved_.get(), F_DUPFD_CLOEXEC, 0))};
        EXPECT_EQ(runStep(arguments, std::move(descriptors), encodedOrder(order), err), expected);
        return err.str();
    }
    std::string remove(const RemovalOrder& order, const std::string& source) {
        return step(order, {"remove", "-rf", "--", source});
    }
    std::string move(const RemovalOrder& order, std::size_t item = 0) {
        const auto& moved = order.request.items.at(item);
        return step(order, {"move", "--", moved.source, moved.destination});
    }
    std::string own(const RemovalOrder& order, std::size_t item = 0) {
        return step(order, {"own", "-R", "0:", order.request.items.at(item).destination});
    }

    std::string inTrash(const std::string& name) const {
        return volume_.machinePath("/Users/sample/.Trash/" + name);
    }
    void giveHomeTo(uid_t user) const {
        for (const auto* const path :
             {"/Users/sample", "/Users/sample/.Trash", "/Users/sample/Library", caches}) {
            ASSERT_EQ(::lchown(volume_.machinePath(path).c_str(), user, staff), 0);
        }
    }
    static struct stat lookAt(const std::string& machinePath) {
        struct stat status {};
        EXPECT_EQ(::lstat(machinePath.c_str(), &status), 0) << machinePath;
        return status;
    }
    static uid_t ownerOf(const std::string& machinePath) { return lookAt(machinePath).st_uid; }

    static constexpr uid_t anna = 20001;
    static constexpr gid_t staff = 20002;
    FileDescriptor moved_;
};

class RootTool : public testing::Test, protected RootToolSteps {};

/// In mounts of the test's own.
class RootToolAndMounts : protected RootToolSteps {};

TEST_F(RootTool, RemovesWhatTheOrderHoldsAndNothingElse) {
    volume_.makeFile(std::string(caches) + "/a/deep/file");
    volume_.makeLink(std::string(caches) + "/a/link", volume_.outside());
    volume_.makeOutsideFile("precious");
    made("spared");
    const auto order = orderToDelete({std::string(caches) + "/a"});
    EXPECT_EQ(remove(order, std::string(caches) + "/a"), "");
    EXPECT_FALSE(volume_.contains(std::string(caches) + "/a"));
    EXPECT_EQ(remove(order, std::string(caches) + "/spared"), "0: the order does not hold that\n");
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/spared"));
    EXPECT_TRUE(fs::exists(volume_.outside("precious")));
    EXPECT_EQ(remove(order, std::string(caches) + "/a"), "") << "what is gone is as it should be";
}

TEST_F(RootTool, AFolderThatWasExchangedIsNotTouched) {
    const auto order = orderToDelete({made("a")});
    fs::rename(volume_.machinePath(caches), volume_.machinePath("/former"));
    made("a");
    EXPECT_THAT(remove(order, std::string(caches) + "/a"),
                StartsWith("1: The folder that it lies in is no longer"));
    fs::remove_all(volume_.machinePath(caches));
    volume_.makeLink(caches, volume_.outside());
    volume_.makeOutsideFile("a");
    EXPECT_THAT(remove(order, std::string(caches) + "/a"), StartsWith("1: "));
    EXPECT_TRUE(fs::exists(volume_.outside("a")));
    EXPECT_TRUE(volume_.contains("/former/a"));
}

TEST_F(RootTool, AStepThatFailsAnywhereSaysSo) {
    const auto order = orderToDelete({std::string(caches) + "/folder"});
    std::string said;
    const std::initializer_list<long> calls{SYS_openat,   SYS_openat2,   SYS_newfstatat, SYS_getdents64,
                                            SYS_unlinkat, SYS_renameat2, SYS_fchownat};
    const auto makeFolder = [&] {
        volume_.makeFile(std::string(caches) + "/folder/deep/file");
        volume_.makeFile(std::string(caches) + "/folder/file");
    };
    makeFolder();
    auto failures = test::onEachFailure(
        calls, EIO, [&] { said = remove(order, std::string(caches) + "/folder"); },
        [&] {
            EXPECT_TRUE(!said.empty() || !volume_.contains(std::string(caches) + "/folder"));
            makeFolder();
        });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(said, "");

    makeFolder();
    const auto move = orderToTrash({std::string(caches) + "/folder"});
    failures = test::onEachFailure(
        calls, EIO, [&] { said = this->move(move); },
        [&] {
            EXPECT_NE(said.empty(), volume_.contains(std::string(caches) + "/folder")) << said;
            EXPECT_NE(said.empty(), !fs::exists(inTrash("folder/deep/file"))) << said;
            if (said.empty())
                fs::rename(inTrash("folder"), volume_.machinePath(std::string(caches) + "/folder"));
        });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(said, "");

    std::error_code error;
    const FileDescriptor trash(::open(inTrash("").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    failures = test::onEachFailure(
        calls, EIO, [&] { error = giveTree(trash.get(), "folder", ::geteuid(), ::getegid()); },
        [&] { EXPECT_EQ(error, std::errc::io_error); });
    EXPECT_GT(failures, 5U);
    EXPECT_FALSE(error);
}

TEST_F(RootTool, MovesToAFreeNameOnly) {
    const auto order = orderToTrash({made("a"), made("b")});
    volume_.makeFile("/Users/sample/.Trash/a", "former");
    EXPECT_EQ(move(order, 0), "1: Something of its name has come to its place in the Trash.\n");
    EXPECT_EQ(test::readFile(inTrash("a")), "former");
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/a"));
    EXPECT_EQ(move(order, 1), "");
    EXPECT_TRUE(fs::exists(inTrash("b")));
    EXPECT_EQ(move(order, 1), "") << "what is gone is as it should be";
}

TEST_F(RootTool, ALinkGoesToTheTrashAsALink) {
    volume_.makeLink(std::string(caches) + "/link", "/Users");
    EXPECT_EQ(move(orderToTrash({std::string(caches) + "/link"})), "");
    EXPECT_TRUE(fs::is_symlink(inTrash("link")));
}

TEST_F(RootTool, ADaemonNeedsNoUnloadingHere) {
    EXPECT_EQ(step(orderToDelete({made("a")}), {"unload", "bootout", "system", "/x"}), "");
}

TEST_F(RootTool, WhatIsNoStepOfTheOrderIsMisuse) {
    const auto order = orderToDelete({made("a")});
    const auto source = std::string(caches) + "/a";
    const std::vector<std::vector<std::string>> misuses{
        {},
        {"remove"},
        {"remove", "-rf", source},
        {"remove", "-r", "--", source},
        {"remove", "-rf", "--", source, source},
        {"move", "--", source, ""},
        {"own", "-R", "0:", "/Users/sample/.Trash/a"},
        {"rm", "-rf", "--", source},
    };
    for (const auto& arguments : misuses) {
        EXPECT_THAT(step(order, arguments, 2), StartsWith("orvane-root-tool: "))
            << testing::PrintToString(arguments);
    }
    EXPECT_THAT(step(orderToTrash({source}), {"remove", "-rf", "--", source}, 2),
                StartsWith("orvane-root-tool: "));
    EXPECT_TRUE(volume_.contains(source));
}

TEST_F(RootTool, RunByHandItSaysWhoRunsIt) {
    const auto result =
        test::runProgram({test::binaryDirectory() + "/orvane-root-tool", "remove", "-rf", "--", "/x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "orvane-root-tool: this is run by orvane-remove-as-root\n");
}

/// What only root can do: give files to others.
class RootToolAndUsers : public RootTool {
  protected:
    void SetUp() override {
        if (!test::isRoot()) GTEST_SKIP() << "only root can give files to others";
        giveHomeTo(anna);
    }
};

TEST_F(RootToolAndUsers, WhatWasMovedBelongsToTheHomesOwnerAndGroupLinksThemselves) {
    volume_.makeFile(std::string(caches) + "/a/deep/file");
    const auto target = volume_.makeOutsideFile("precious");
    volume_.makeLink(std::string(caches) + "/a/link", target);
    const auto order = orderToTrash({std::string(caches) + "/a"});
    EXPECT_EQ(move(order), "");
    EXPECT_EQ(own(order), "");
    for (const auto* const inside : {"a", "a/deep", "a/deep/file", "a/link"}) {
        EXPECT_EQ(ownerOf(inTrash(inside)), anna) << inside;
        EXPECT_EQ(lookAt(inTrash(inside)).st_gid, staff) << inside;
    }
    EXPECT_EQ(ownerOf(target), 0U);
    EXPECT_NE(lookAt(target).st_gid, staff);
}

TEST_F(RootToolAndUsers, AFileWithASecondNameIsNotGivenAway) {
    const auto secret = volume_.makeOutsideFile("secret");
    volume_.makeFile(std::string(caches) + "/a/own");
    fs::create_hard_link(secret, volume_.machinePath(std::string(caches) + "/a/hard"));
    const auto order = orderToTrash({std::string(caches) + "/a"});
    EXPECT_EQ(move(order), "");
    EXPECT_EQ(own(order), "1: A file of it has a second name elsewhere and still belongs to whom it did.\n");
    EXPECT_EQ(ownerOf(secret), 0U);
    EXPECT_EQ(ownerOf(inTrash("a/own")), anna);
}

TEST_F(RootToolAndUsers, WhatWasInTheTrashBeforeIsNotGivenAway) {
    const auto order = orderToTrash({made("a")});
    volume_.makeFile("/Users/sample/.Trash/a", "former");
    EXPECT_THAT(move(order), HasSubstr("has come to its place"));
    EXPECT_EQ(own(order), "");
    EXPECT_EQ(ownerOf(inTrash("a")), 0U);
}

TEST_F(RootToolAndUsers, WhatCameToItsPlaceAfterTheMoveIsNotGivenAway) {
    const auto order = orderToTrash({made("a")});
    EXPECT_EQ(move(order), "");
    fs::rename(inTrash("a"), inTrash("b"));
    volume_.makeFile("/Users/sample/.Trash/a", "another");
    EXPECT_EQ(own(order), "");
    EXPECT_EQ(ownerOf(inTrash("a")), 0U);
}

TEST_F(RootToolAndUsers, OfTwoForOnePlaceTheOneThatCameIsGiven) {
    volume_.makeFile(std::string(caches) + "/x/same");
    volume_.makeFile(std::string(caches) + "/y/same");
    auto order = orderToTrash({std::string(caches) + "/x/same", std::string(caches) + "/y/same"});
    fs::remove(volume_.machinePath(std::string(caches) + "/x/same"));
    EXPECT_EQ(move(order, 0), "");
    EXPECT_EQ(own(order, 0), "");
    EXPECT_EQ(move(order, 1), "");
    EXPECT_EQ(own(order, 1), "");
    EXPECT_EQ(ownerOf(inTrash("same")), anna);
}

PRIVATE_MOUNTS_TEST(RootToolAndMounts, WhatIsMountedInAnItemIsNeitherMovedNorEmptiedNorGivenAway) {
    // In a user's own namespace there is nobody else to give anything to.
    const bool hasOthers = ::lchown(volume_.machinePath(caches).c_str(), anna, anna) == 0;
    if (hasOthers) giveHomeTo(anna);
    const auto inside = std::string(caches) + "/a/deep/mounted";
    volume_.makeDirectory(inside);
    volume_.makeDirectory("/disk");
    volume_.makeFile("/disk/precious");
    // Of the same file system: only the kernel's table of mounts tells.
    ASSERT_EQ(::mount(volume_.machinePath("/disk").c_str(), volume_.machinePath(inside).c_str(), nullptr,
                      MS_BIND, nullptr),
              0);
    const auto toTrash = orderToTrash({std::string(caches) + "/a"});
    EXPECT_EQ(move(toTrash), "1: A disk is mounted on it or in it.\n");
    EXPECT_TRUE(volume_.contains(inside + "/precious"));

    EXPECT_THAT(remove(orderToDelete({std::string(caches) + "/a"}), std::string(caches) + "/a"),
                StartsWith("1: "));
    EXPECT_TRUE(volume_.contains("/disk/precious"));

    // Mounted once it lies in the Trash.
    volume_.makeDirectory(std::string(caches) + "/b/mounted");
    const auto order = orderToTrash({std::string(caches) + "/b"});
    EXPECT_EQ(move(order), "");
    ASSERT_EQ(::mount(volume_.machinePath("/disk").c_str(), inTrash("b/mounted").c_str(), nullptr, MS_BIND,
                      nullptr),
              0);
    EXPECT_THAT(own(order), StartsWith("1: "));
    if (hasOthers) {
        EXPECT_EQ(ownerOf(volume_.machinePath("/disk/precious")), 0U);
        EXPECT_EQ(ownerOf(volume_.machinePath("/disk")), 0U);
    }
}

PRIVATE_MOUNTS_TEST(RootToolAndMounts, AnotherDiskThanTheTrashsIsRefused) {
    volume_.makeDirectory("/Volumes/Data");
    ASSERT_EQ(::mount("tmpfs", volume_.machinePath("/Volumes/Data").c_str(), "tmpfs", 0, nullptr), 0);
    fs::remove_all(volume_.machinePath(caches));
    volume_.makeLink(caches, "/Volumes/Data");
    volume_.makeFile("/Volumes/Data/a");
    auto order = orderToTrash({std::string(caches) + "/a"});
    order.request.items[0].folder = identity("/Volumes/Data");
    EXPECT_THAT(move(order), StartsWith("1: It lies on another disk than the Trash"));
    EXPECT_TRUE(volume_.contains("/Volumes/Data/a"));
}

PRIVATE_MOUNTS_TEST(RootToolAndMounts, WhatIsInTheTrashAlreadyStaysThere) {
    fs::remove_all(volume_.machinePath(caches));
    volume_.makeLink(caches, "/Users/sample/.Trash");
    volume_.makeFile("/Users/sample/.Trash/a");
    auto order = orderToTrash({std::string(caches) + "/a"});
    order.request.items[0].folder = identity("/Users/sample/.Trash");
    order.request.items[0].destination = "/Users/sample/.Trash/a 2";
    EXPECT_EQ(move(order), "1: It is in the Trash already, or holds it.\n");
    EXPECT_TRUE(fs::exists(inTrash("a")));
}

}  // namespace
}  // namespace orvane
