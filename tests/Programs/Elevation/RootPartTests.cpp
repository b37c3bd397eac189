#include "Programs/Elevation/RootPart.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "Platform/Linux/SealedMemory.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Programs/Elevation/OrderFixture.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using testing::ExitedWithCode;
using testing::HasSubstr;

class RootPart : public OrderFixture {
  protected:
    /// Why the order is refused; empty when it is not.
    std::string refusal(const RemovalOrder& order) const { return refusalFor(order, ::geteuid()); }
    static std::string refusalFor(const RemovalOrder& order, uid_t caller) {
        const auto checked = checkedOrder(encodedOrder(order), promptText(order), std::to_string(caller));
        return checked ? std::string() : checked.error();
    }
};

TEST_F(RootPart, AcceptsWhatAPlanHolds) {
    EXPECT_EQ(refusal(orderToDelete({made("a"), made("b")})), "");
    EXPECT_EQ(refusal(orderToTrash({made("a")})), "");
    const auto order = orderToTrash({made("a")});
    const auto checked = checkedOrder(encodedOrder(order), promptText(order), std::to_string(::geteuid()));
    ASSERT_TRUE(checked);
    EXPECT_EQ(checked->owner, ::geteuid());
    EXPECT_EQ(checked->order, order);
}

TEST_F(RootPart, DoesNothingButWhatWasAnnounced) {
    const auto order = orderToDelete({made("a"), made("b")});
    const auto text = encodedOrder(order);
    const auto caller = std::to_string(::geteuid());
    for (const std::string announced :
         {"", "2 items", "delete 2 items permanently", "delete 1 item permanently: “a”",
          "move 2 items to the Trash: “a”, “b”", "delete 2 items permanently: “a”, “c”"}) {
        EXPECT_EQ(checkedOrder(text, announced, caller).error(), "the request is not what was authorized");
    }
    EXPECT_TRUE(checkedOrder(text, promptText(order), caller));
}

TEST_F(RootPart, RefusesWhatIsNoOrderAndACallerThatIsNone) {
    EXPECT_EQ(checkedOrder("rm -rf /", "1 item", "0").error(), "the request is not well-formed");
    const auto order = orderToDelete({made("a")});
    for (const auto* const caller : {"", "x", "-1", " 0", "99999999999999999999", "0 "}) {
        EXPECT_EQ(checkedOrder(encodedOrder(order), promptText(order), caller).error(),
                  "nobody knows who asks");
    }
}

TEST_F(RootPart, AnItemThatNoPlanCanHoldRefusesTheWholeOrder) {
    volume_.makeFile("/etc/passwd");
    volume_.makeFile("/System/Applications/Mail.app/file");
    volume_.makeFile("/Users/other/Library/Caches/x");
    for (const auto* const source :
         {"/etc/passwd", "/System/Applications/Mail.app", "/Users/other/Library/Caches/x", "/Users/sample",
          "/Users/sample/Library/Caches", "/Users/sample/.Trash"}) {
        const auto order = orderToDelete({made("a"), source});
        EXPECT_THAT(refusal(order), HasSubstr("item 2: ")) << source;
    }
}

TEST_F(RootPart, AnItemWhoseFolderHasBeenExchangedRefusesTheWholeOrder) {
    const auto order = orderToDelete({made("a"), made("b")});
    fs::rename(volume_.machinePath(caches), volume_.machinePath("/former"));
    made("a");
    made("b");
    EXPECT_THAT(refusal(order), HasSubstr("no longer the one that was shown"));
}

TEST_F(RootPart, AnItemWhoseFolderBecameALinkElsewhereRefusesTheWholeOrder) {
    const auto order = orderToDelete({made("a")});
    fs::rename(volume_.machinePath(caches), volume_.machinePath("/former"));
    volume_.makeFile("/elsewhere/a");
    volume_.makeLink(caches, "/elsewhere");
    EXPECT_THAT(refusal(order), HasSubstr("no longer the one that was shown"));
    fs::remove(volume_.machinePath(caches));
    volume_.makeLink(caches, volume_.outside());
    EXPECT_NE(refusal(order), "");
}

TEST_F(RootPart, AVolumeThatWasExchangedIsRefused) {
    auto order = orderToDelete({made("a")});
    order.rootIdentity.inode += 1;
    EXPECT_EQ(refusal(order), "another folder has come to the place of the volume");
    const test::TemporaryDirectory directory;
    order = orderToDelete({made("a")});
    order.root = directory.makeLink("link", order.root);
    EXPECT_THAT(refusal(order), HasSubstr("the volume cannot be opened"));
}

TEST_F(RootPart, AVolumeThatEverybodyCanWriteToIsRefused) {
    const auto order = orderToDelete({made("a")});
    ::chmod(volume_.machinePath("/").c_str(), 0777);
    EXPECT_EQ(refusal(order), "everybody can write to the volume");
    ::chmod(volume_.machinePath("/").c_str(), 01777);
    EXPECT_EQ(refusal(order), "");
}

TEST_F(RootPart, AHomeInAFolderThatEverybodyCanWriteToIsRefused) {
    const auto order = orderToDelete({made("a")});
    ::chmod(volume_.machinePath("/Users").c_str(), 0777);
    EXPECT_EQ(refusal(order), "a folder on the way to the home is another user's");
}

TEST_F(RootPart, AHomeBehindALinkIsRefused) {
    auto order = orderToDelete({made("a")});
    volume_.makeLink("/Users/linked", "sample");
    order.home = "/Users/linked";
    order.request.items[0].source = "/Users/linked/Library/Caches/a";
    EXPECT_THAT(refusal(order), HasSubstr("the home '/Users/linked' cannot be used"));
}

TEST_F(RootPart, AHomeMayBeTheRootOfTheVolume) {
    volume_.makeFile("/Library/Caches/a");
    auto order = orderToDelete({"/Library/Caches/a"});
    order.home = "/";
    EXPECT_EQ(refusal(order), "");
}

TEST_F(RootPart, ADestinationIsAnEntryOfTheTrash) {
    for (const auto* const place : {"/Users/sample/a", "/Users/sample/.Trash", "/Users/sample/.Trash/b/a",
                                    "/Users/other/.Trash/a", "/.Trash/a", "/Users/sample/.Trashed/a"}) {
        auto order = orderToTrash({made("a")});
        order.request.items[0].destination = place;
        EXPECT_EQ(refusal(order), "item 1: it would not go to the Trash") << place;
    }
}

TEST_F(RootPart, ATrashThatIsNoFolderOfTheOwnersIsRefused) {
    const auto order = orderToTrash({made("a")});
    const auto trash = volume_.machinePath("/Users/sample/.Trash");
    fs::remove(trash);
    EXPECT_THAT(refusal(order), HasSubstr("the Trash cannot be used"));
    volume_.makeDirectory("/elsewhere");
    volume_.makeLink("/Users/sample/.Trash", "/elsewhere");
    EXPECT_THAT(refusal(order), HasSubstr("the Trash cannot be used"));
    EXPECT_EQ(refusal(orderToDelete({made("a")})), "") << "what is deleted needs none";
}

TEST_F(RootPart, AFolderThatApplicationsShareIsRefused) {
    // The user's folder of caches is the disk itself: an entry of it is one of everybody's.
    fs::remove_all(volume_.machinePath(caches));
    volume_.makeLink(caches, "/");
    volume_.makeDirectory("/Applications");
    auto order = orderToDelete({std::string(caches) + "/Applications"});
    order.request.items[0].folder = identity("/");
    EXPECT_EQ(refusal(order), "item 1: other applications use it");
}

TEST_F(RootPart, TheMachinesOwnDiskServesOnlyTheOneWhoAsks) {
    made("a");
    const auto home = fs::canonical(volume_.machinePath("/Users/sample")).string();
    RemovalOrder order{"/", test::identityOf("/"), home, {RemovalMode::permanent, {}}};
    order.request.items.push_back({PrivilegedRequest::Item::Kind::item, home + "/Library/Caches/a", "",
                                   test::identityOf(home + "/Library/Caches")});
    EXPECT_EQ(refusalFor(order, ::geteuid()), "");
    EXPECT_EQ(refusalFor(order, 0), "") << "root may serve anybody";
    EXPECT_EQ(refusalFor(order, 12345), "the home is another user's");
}

/// What only root can set up: files of several users.
class RootPartAndUsers : public RootPart {
  protected:
    void SetUp() override {
        if (!test::isRoot()) GTEST_SKIP() << "only root can give files to others";
        RootPart::SetUp();
    }
    void give(const std::string& path, uid_t user) const {
        ASSERT_EQ(::lchown(volume_.machinePath(path).c_str(), user, user), 0);
    }
    static constexpr uid_t anna = 20001;
    static constexpr uid_t otto = 20002;
    static constexpr uid_t eve = 20003;
};

TEST_F(RootPartAndUsers, AMacsDiskServesItsUserWhoeverAsks) {
    give("/Users/sample", anna);
    give("/Users/sample/.Trash", anna);
    const auto order = orderToTrash({made("a")});
    EXPECT_EQ(refusalFor(order, otto), "");
    EXPECT_EQ(checkedOrder(encodedOrder(order), promptText(order), std::to_string(otto))->owner, anna)
        << "nobody gains a file by asking";
}

TEST_F(RootPartAndUsers, ATrashOfAnotherUserIsRefused) {
    give("/Users/sample", anna);
    give("/Users/sample/.Trash", otto);
    EXPECT_EQ(refusalFor(orderToTrash({made("a")}), otto), "the Trash is another user's than the home");
}

TEST_F(RootPartAndUsers, AnotherUsersFolderIsNoVolume) {
    // Anna's home in the place of a volume, in which Eve has put what she calls a home.
    give("/", anna);
    give("/Users", eve);
    give("/Users/sample", eve);
    const auto order = orderToDelete({made("a")});
    EXPECT_EQ(refusalFor(order, eve), "the volume is another user's");
    EXPECT_EQ(refusalFor(order, anna), "");
}

TEST_F(RootPartAndUsers, AHomeInAnotherUsersFolderIsRefused) {
    give("/Users", eve);
    give("/Users/sample", anna);
    EXPECT_EQ(refusalFor(orderToDelete({made("a")}), anna),
              "a folder on the way to the home is another user's");
}

TEST_F(RootPartAndUsers, ALinkToAnotherUsersFolderIsRefused) {
    give("/Users/sample", anna);
    fs::remove_all(volume_.machinePath(caches));
    for (const auto* const name : {"shadow", "a.plist", "A.app"}) {
        volume_.makeFile(std::string("/etc/") + name);
    }
    const std::vector<std::pair<std::string, std::string>> folders{
        {caches, "shadow"},
        {"/Users/sample/Library/Group Containers", "shadow"},
        {"/Users/sample/Library/LaunchAgents", "a.plist"},
        {"/Users/sample/Applications", "A.app"}};
    for (const auto& [folder, name] : folders) {
        volume_.makeLink(folder, "/etc");
        auto order = orderToDelete({folder + "/" + name});
        order.request.items[0].folder = identity("/etc");
        EXPECT_THAT(refusalFor(order, anna), HasSubstr("a link leads to the folder of another user"))
            << folder;
        give("/etc", anna);
        EXPECT_EQ(refusalFor(order, anna), "") << folder << ": people move their own folders";
        give("/etc", 0);
    }
}

TEST_F(RootPartAndUsers, AFolderOfTheMachinesMayBeALinkToOneOfRoots) {
    give("/Users/sample", anna);
    for (const auto* const name : {"a.plist", "A.app"}) volume_.makeFile(std::string("/elsewhere/") + name);
    volume_.makeDirectory("/Library");
    const std::vector<std::pair<std::string, std::string>> folders{{"/Applications", "A.app"},
                                                                   {"/Library/LaunchAgents", "a.plist"}};
    for (const auto& [folder, name] : folders) {
        volume_.makeLink(folder, "/elsewhere");
        auto order = orderToDelete({folder + "/" + name});
        order.request.items[0].folder = identity("/elsewhere");
        EXPECT_EQ(refusalFor(order, anna), "") << folder;
        give("/elsewhere", eve);
        EXPECT_THAT(refusalFor(order, anna), HasSubstr("a link leads to the folder of another user"))
            << folder;
        give("/elsewhere", 0);
    }
}

/// Calls it with the input in a pipe: what the tests write fits into it.
[[noreturn]] void removeWith(const std::string& input, const std::string& announced,
                             const std::string& tool = test::binaryDirectory() + "/orvane-root-tool") {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0 || ::write(ends[1], input.data(), input.size()) < 0)
        std::abort();
    ::close(ends[1]);
    ::dup2(ends[0], STDIN_FILENO);
    std::exit(removeAsRoot(announced, std::to_string(::geteuid()), tool, std::cerr));
}

TEST_F(RootPart, RunsTheCommandsInAShellWithItsTools) {
    const auto order = orderToDelete({made("it's\n\xff"), made("-rf")});
    made("spared");
    EXPECT_EXIT(removeWith(encodedOrder(order), promptText(order)), ExitedWithCode(0), "^$");
    EXPECT_FALSE(volume_.contains(std::string(caches) + "/-rf"));
    EXPECT_FALSE(volume_.contains(std::string(caches) + "/it's\n\xff"));
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/spared"));
}

TEST_F(RootPart, MovesWhatGoesToTheTrash) {
    volume_.makeFile(std::string(caches) + "/folder/deep/file");
    const auto order = orderToTrash({std::string(caches) + "/folder", made("it's\n\xff")});
    EXPECT_EXIT(removeWith(encodedOrder(order), promptText(order)), ExitedWithCode(0), "^$");
    EXPECT_TRUE(volume_.contains("/Users/sample/.Trash/folder/deep/file"));
    EXPECT_TRUE(volume_.contains("/Users/sample/.Trash/it's\n\xff"));
    EXPECT_FALSE(volume_.contains(std::string(caches) + "/folder"));
}

TEST_F(RootPart, LeavesTheSessionOfWhoAskedEvenWhereItLeadsAGroupOfIt) {
    const test::TemporaryDirectory directory;
    const auto session = directory.path("session");
    const auto tool = directory.makeFile("tool",
                                         "#!/bin/sh\nread -r id name state parent group session rest "
                                         "</proc/self/stat\necho \"$session\" >'" +
                                             session + "'\nexit 3\n");
    ::chmod(tool.c_str(), 0755);
    const auto order = orderToDelete({made("a")});
    const auto removeAsLeader = [&] {
        // Who leads a group can lead no session.
        if (::setpgid(0, 0) != 0) std::abort();
        removeWith(encodedOrder(order), promptText(order), tool);
    };
    EXPECT_EXIT(removeAsLeader(), ExitedWithCode(3), "^$") << "its end is that of the tools";
    EXPECT_THAT(test::readFile(session), testing::MatchesRegex("[1-9][0-9]*\n"));
    EXPECT_NE(test::readFile(session), std::to_string(::getsid(0)) + "\n");
}

TEST_F(RootPart, SaysWhyItRefusesAndRunsNothing) {
    const auto order = orderToDelete({made("a")});
    const auto text = encodedOrder(order);
    EXPECT_EXIT(
        removeWith(text, "delete 2 items permanently"), ExitedWithCode(2),
        "^Nothing was removed with administrator rights: the request is not what was authorized\\.\n$");
    EXPECT_EXIT(removeWith(text.substr(0, text.size() - 1), promptText(order)), ExitedWithCode(2),
                "not well-formed");
    EXPECT_EXIT(removeWith("", ""), ExitedWithCode(2), "not well-formed");
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/a"));
}

TEST_F(RootPart, InputWithoutEndIsRefused) {
    const auto readZeroes = [] {
        ::dup2(::open("/dev/zero", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        std::exit(removeAsRoot("1 item", "0", "/nowhere", std::cerr));
    };
    EXPECT_EXIT(readZeroes(), ExitedWithCode(2), "not well-formed");
}

TEST_F(RootPart, WhatIsRefusedStaysSoWhateverCannotBeLookedAt) {
    fs::remove_all(volume_.machinePath(caches));
    volume_.makeLink(caches, "/");
    volume_.makeDirectory("/Applications");
    auto order = orderToTrash({std::string(caches) + "/Applications"});
    order.request.items[0].folder = identity("/");
    std::string reason;
    const auto failures = test::onEachFailure(
        {SYS_open, SYS_openat, SYS_openat2, SYS_newfstatat, SYS_fcntl}, EIO, [&] { reason = refusal(order); },
        [&] { EXPECT_NE(reason, ""); });
    EXPECT_GT(failures, 20U);
    EXPECT_EQ(reason, "item 1: other applications use it");
}

/// On its way to the shell, with one call after the other failing. Ends with how many did where each was told
/// and nothing ran.
[[noreturn]] void removeWhereCallsFail(const std::string& input, const std::string& announced) {
    // What comes to the places of the tools' descriptors closes nothing of the test's.
    for (int i = 0; i < 20; ++i) static_cast<void>(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const auto order = sealedMemory(input);
    for (int failing = 0;; ++failing) {
        int calls = 0;
        bool hasShell = false;
        std::ostringstream said;
        int status = 0;
        ::dup2(order->get(), STDIN_FILENO);
        ::lseek(STDIN_FILENO, 0, SEEK_SET);
        test::onCue(
            {SYS_memfd_create, SYS_ftruncate, SYS_dup2, SYS_chdir, SYS_execve},
            [&](const test::PendingCall& call) {
                hasShell = call.number == SYS_execve;
                return hasShell || calls++ == failing ? test::failWith(EIO) : test::proceed;
            },
            [&] { status = removeAsRoot(announced, std::to_string(::geteuid()), "/nowhere", said); });
        if (status != 2 ||
            said.str() != "Nothing was removed with administrator rights: Input/output error.\n")
            std::exit(1);
        if (hasShell) std::exit(calls == failing ? 100 + failing : 1);
    }
}

/// A process of its own, whose threads are others than those of the tests above.
class RootPartFailures : public RootPart {};

TEST_F(RootPartFailures, WhatFailsOnTheWayToTheShellIsSaidAndNothingRuns) {
    const auto order = orderToDelete({made("a")});
    // Three files in memory, one of which gets a length; four places for the tools; the folder.
    EXPECT_EXIT(removeWhereCallsFail(encodedOrder(order), promptText(order)), ExitedWithCode(100 + 9), "^$");
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/a"));
}

TEST_F(RootPart, RunByHandItDoesNothing) {
    const auto order = orderToDelete({made("a")});
    const auto program = test::binaryDirectory() + "/orvane-remove-as-root";
    const auto result =
        test::runProgram({program, promptText(order)}, {{{"PKEXEC_UID", ""}}, encodedOrder(order)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, test::isRoot()
                                ? "orvane-remove-as-root: this is run by Orvane, through pkexec\n"
                                : "Administrator rights are used only by an installed Orvane (cmake "
                                  "--install, as root): everything of yours could change this one.\n");
    EXPECT_TRUE(volume_.contains(std::string(caches) + "/a"));
}

}  // namespace
}  // namespace orvane
