#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <asio/thread_pool.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "Platform/Linux/PolkitRunner.h"
#include "Services/AppRemovalService.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Programs/Elevation/AuthorizationSystem.h"

namespace orvane {

inline constexpr const char* ownAction = "org.example.orvane.remove";
inline constexpr const char* hostileName = "-it's \"a\"\n$(touch x)\t\xff";
inline constexpr const char* dismissed =
    "Administrator permission was not granted: the request was dismissed.";
inline constexpr const char* notAuthorized =
    "Administrator permission was not granted: the password was not accepted, or the request is not "
    "authorized.";
inline constexpr const char* noAgent =
    "Nobody could be asked for administrator permission: no authentication agent is running in this "
    "session. A desktop session has one; otherwise run Orvane as root.";
inline constexpr const char* noAuthority =
    "Nobody could be asked for administrator permission: the authorization service (polkit) is not "
    "running.";

inline constexpr int repetitions = 5;

/// A volume whose /Library is root's, a user who may do nothing there, and the services as the program has
/// them, on the real authorization system.
class AuthorizationFixture : public testing::Test {
  protected:
    void SetUp() override {
        const auto reason = test::AuthorizationSystem::whyImpossible();
        if (!reason.empty()) GTEST_SKIP() << reason;
        volume_.makeDirectory("/Users/sample/.Trash");
        volume_.giveEverythingToUnprivilegedUser();
        volume_.makeDirectory(agents);
        volume_.makeDirectory("/Library/LaunchDaemons");
        volume_.makeDirectory("/Applications");
    }

    /// A list in the machine's folder of launch agents, where only root may change anything.
    static std::string agent(const std::string& name) { return std::string(agents) + "/" + name + ".plist"; }

    /// A file that only root can remove.
    RelatedItem madeItem(const std::string& path, RelatedItemKind kind = RelatedItemKind::other) const {
        volume_.makeFile(path);
        return {volume_.url(path), kind, 1, true, std::nullopt};
    }
    std::vector<RelatedItem> madeItems(int count) const {
        std::vector<RelatedItem> items;
        for (int i = 0; i < count; ++i) items.push_back(madeItem(agent(std::to_string(i))));
        return items;
    }

    /// One user's removals on a system where all is as it should be.
    static void runAsUser(const std::vector<std::string>& answers,
                          FunctionRef<void(const test::AuthorizationSystem&)> body) {
        test::AuthorizationSystem::run([&](const test::AuthorizationSystem& system) {
            system.start();
            test::asUnprivilegedUser([&] {
                system.startAgent(answers);
                body(system);
            });
        });
    }

    RemovalResult deletePermanently(const std::vector<RelatedItem>& items) {
        return onService([&](auto& service) { return service.deletePermanently(items, {}, {}); });
    }
    RemovalResult moveToTrash(const std::vector<RelatedItem>& items) {
        return onService([&](auto& service) { return service.moveToTrash(items, {}, {}); });
    }

    /// Starts a process of the user's own that asks; what it does after `body` is no success.
    static pid_t startAsker(FunctionRef<void()> body) {
        const auto asker = ::fork();
        if (asker != 0) return asker;
        const auto user = test::unprivilegedUser();
        if (::setresgid(user, user, user) == 0 && ::setresuid(user, user, user) == 0) body();
        ::_exit(99);
    }
    static int statusOf(pid_t process) {
        int status = 0;
        EXPECT_EQ(::waitpid(process, &status, 0), process);
        return status;
    }

    /// The program whose words are the tools of the installed part.
    static std::string rootTool() {
        return std::filesystem::path(installedRootPart()).parent_path() / "orvane-root-tool";
    }

    template <typename Call>
    RemovalResult onService(Call call) {
        return onServiceWith("/nowhere", call);
    }
    /// With that program beside Orvane's own.
    template <typename Call>
    RemovalResult onServiceWith(const std::string& ownPart, Call call) {
        asio::thread_pool pool(2);
        const auto runner = makePrivilegedRunner(volume_.volume(), test::TestVolume::home(), ownPart);
        AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, *runner);
        return mainLoop_.run(call(service));
    }

    /// All of them failed for that reason, and none is removed.
    static void expectAllFailed(const RemovalResult& result, std::size_t count, const std::string& reason) {
        EXPECT_THAT(result.removed, testing::IsEmpty());
        EXPECT_THAT(result.failed, testing::SizeIs(count));
        for (const auto& failure : result.failed) EXPECT_EQ(failure.reason, reason);
    }

    static constexpr const char* agents = "/Library/LaunchAgents";

    test::TestVolume volume_;
    test::FakeWorkspace workspace_;
    test::MainLoop mainLoop_;
};

}  // namespace orvane
