#include "Programs/Elevation/RootPart.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "Programs/Elevation/RemovalOrder.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Programs/Elevation/AuthorizationFixture.h"

namespace orvane {
namespace {

using test::AuthorizationSystem;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string ownName() {
    return ::getpwuid(test::unprivilegedUser())->pw_name;
}
std::string ownID() {
    return std::to_string(test::unprivilegedUser());
}

RemovalOrder orderToDelete(const std::vector<std::string>& paths) {
    RemovalOrder order{ownName(), {"delete", {}}};
    for (const auto& path : paths) order.request.items.push_back({"item", path, ""});
    return order;
}

TEST(RootPart, BuildsTheCommandsOfTheOrderItself) {
    const auto order = orderToDelete({"/a b", "/c"});
    EXPECT_EQ(authorizedCommands(encodedOrder(order), "2 items", ownID()),
              "/bin/rm -rf -- '/a b'; /bin/rm -rf -- '/c'; ");
}

TEST(RootPart, DoesNothingButWhatWasAuthorized) {
    const auto order = encodedOrder(orderToDelete({"/a", "/b"}));
    for (const auto* const announced : {"1 item", "3 items", "2", "", "02 items", "2 items "}) {
        EXPECT_EQ(authorizedCommands(order, announced, ownID()).error(),
                  "the request holds 2 items, which is not what was authorized");
    }
}

TEST(RootPart, BelievesNobodyToBeSomebodyElse) {
    const auto order = encodedOrder(orderToDelete({"/a"}));
    for (const auto* const caller : {"0", "", "x", "-1", "99999999999999999999", "4294967295", " 0"}) {
        if (ownID() == caller) continue;
        EXPECT_FALSE(authorizedCommands(order, "1 item", caller)) << caller;
    }
    for (const auto* const name : {"root", "no such user", "0", "65534", "nobody "}) {
        if (ownName() == name) continue;
        auto other = orderToDelete({"/a"});
        other.userName = name;
        EXPECT_FALSE(authorizedCommands(encodedOrder(other), "1 item", ownID())) << name;
    }
}

TEST(RootPart, RefusesWhatIsNoOrder) {
    EXPECT_EQ(authorizedCommands("rm -rf /", "1 item", ownID()).error(), "the request is not well-formed");
}

/// Calls it with the input in a pipe: what the tests write fits into it.
[[noreturn]] void removeWith(const std::string& input, const std::string& announced) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0 || ::write(ends[1], input.data(), input.size()) < 0)
        std::abort();
    ::close(ends[1]);
    ::dup2(ends[0], STDIN_FILENO);
    std::exit(removeAsRoot(announced, ownID(), {{"/bin/sh", "-s"}}, std::cerr));
}

TEST(RootPart, RunsTheCommandsInAShell) {
    const test::TemporaryDirectory directory;
    const auto order = orderToDelete({directory.makeFile("it's\n\xff"), directory.makeFile("-rf")});
    EXPECT_EXIT(removeWith(encodedOrder(order), "2 items"), ExitedWithCode(0), "^$");
    EXPECT_THAT(directory.listing(), IsEmpty());
}

TEST(RootPart, SaysWhyItRefusesAndRunsNothing) {
    const test::TemporaryDirectory directory;
    const auto order = encodedOrder(orderToDelete({directory.makeFile("a")}));
    EXPECT_EXIT(
        removeWith(order, "2 items"), ExitedWithCode(2),
        "^Nothing was removed with administrator rights: the request holds 1 item, which is not what was "
        "authorized\\.\n$");
    EXPECT_EXIT(removeWith(order.substr(0, order.size() - 1), "1 item"), ExitedWithCode(2),
                "not well-formed");
    EXPECT_EXIT(removeWith("", "0 items"), ExitedWithCode(2), "not well-formed");
    EXPECT_THAT(directory.listing(), HasSubstr("/a\n"));
}

TEST(RootPart, InputWithoutEndIsRefused) {
    const auto readZeroes = [] {
        ::dup2(::open("/dev/zero", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        std::exit(removeAsRoot("1 item", ownID(), {{"/bin/sh", "-s"}}, std::cerr));
    };
    EXPECT_EXIT(readZeroes(), ExitedWithCode(2), "not well-formed");
}

TEST(RootPart, RunByHandItDoesNothing) {
    const auto result = test::runProgram({test::binaryDirectory() + "/orvane-remove-as-root", "1 item"},
                                         {{{"PKEXEC_UID", ""}}, encodedOrder(orderToDelete({"/nowhere/a"}))});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "orvane-remove-as-root: this is run by orvane-elevate, through pkexec\n");
}

/// The installed program behind the real prompt, called by a user who goes past Orvane's own front.
class InstalledRootPart : public AuthorizationFixture {
  protected:
    struct Call {
        std::string input;
        std::vector<std::string> arguments;
    };

    /// Gives it the input through the file system: more than a pipe holds.
    static test::ProgramResult call(const Call& call) {
        const test::TemporaryDirectory directory;
        const auto input = directory.makeFile("input", call.input);
        std::vector<std::string> command{"/bin/sh",
                                         "-c",
                                         "exec \"$@\" <'" + input + "'",
                                         "sh",
                                         "/usr/bin/pkexec",
                                         "--disable-internal-agent",
                                         RootShell::installedRootPart()};
        command.insert(command.end(), call.arguments.begin(), call.arguments.end());
        return test::runProgram(command, {{{"SHELL", ""}}, {}});
    }

    static void asUser(FunctionRef<void()> body) {
        AuthorizationSystem::run([&](const AuthorizationSystem& system) {
            system.start();
            test::asUnprivilegedUser([&] {
                system.startAgent({"approve"});
                body();
            });
        });
    }

    std::string locked(const std::string& name) const { return volume_.machinePath("Library/" + name); }
};

TEST_F(InstalledRootPart, RefusesWhatWasNotAuthorized) {
    madeItems(2);
    const auto before = volume_.listing();
    asUser([&] {
        const auto order = orderToDelete({locked("0"), locked("1")});
        EXPECT_THAT(call({encodedOrder(order), {"1 item"}}).error, HasSubstr("not what was authorized"));
        EXPECT_EQ(call({encodedOrder(order), {}}).status, 1);
        EXPECT_EQ(call({encodedOrder(order), {"2 items", "x"}}).status, 1);
        auto other = order;
        other.userName = "root";
        EXPECT_THAT(call({encodedOrder(other), {"2 items"}}).error, HasSubstr("another user"));
        EXPECT_THAT(call({"rm -rf /tmp/x\n", {"1 item"}}).error, HasSubstr("not well-formed"));
    });
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(InstalledRootPart, AnOrderOfFiveMegabytesIsCarriedOutWhole) {
    // Paths of nearly the greatest length there is, in few items, because each is a process.
    std::string folder = "/Library";
    for (int i = 0; i < 15; ++i) folder += "/" + std::string(240, 'x');
    RemovalOrder order = orderToDelete({});
    constexpr std::size_t count = 1400;
    for (std::size_t i = 0; i < count; ++i) {
        const auto name = folder + "/" + std::to_string(i);
        // Removing what is not there is success as well: only some are made.
        if (i % 200 == 0 || i + 1 == count) volume_.makeFile(name);
        order.request.items.push_back({"item", volume_.machinePath(name.substr(1)), ""});
    }
    const auto text = encodedOrder(order);
    ASSERT_GT(text.size(), 5'000'000u);

    asUser([&] {
        const auto result = call({text, {itemCount(count)}});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, "");
    });

    EXPECT_TRUE(std::filesystem::is_empty(volume_.machinePath(folder)));
}

}  // namespace
}  // namespace orvane
