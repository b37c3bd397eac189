#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <csignal>
#include <filesystem>

#include "Platform/Machine.h"
#include "Services/AppRemovalService.h"
#include "Services/ApplicationScanner.h"
#include "Services/RemovalPlanner.h"
#include "tests/Fixtures/ChildProcess.h"
#include "tests/Fixtures/FakePrivilegedRunner.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {
namespace {

using testing::Contains;
using testing::Optional;
using testing::UnorderedElementsAre;

/// The sample volume, where real processes run from its bundles.
class RunningApplications : public testing::Test {
  protected:
    void SetUp() override {
        const auto made = runProgram(
            {"/usr/bin/env", "python3", "-B", sourceDirectory() + "/tools/make-sample-volume", root()});
        ASSERT_EQ(made.status, 0) << made.error;
        auto machine = makeMachine({.root = root(), .home = {}, .rootPart = {}});
        ASSERT_TRUE(machine) << machine.error();
        machine_ = std::move(*machine);
    }

    std::string root() const { return directory_.path("volume"); }
    std::string install(const std::string& path) const { return installSleep(root() + path); }

    RemovalPlan plan(const std::string& bundle) {
        ApplicationScanner scanner(pool_.get_executor(), *machine_.fileManager, *machine_.bundleLoader,
                                   *machine_.localizedText);
        RemovalPlanner planner(pool_.get_executor(), *machine_.fileManager, *machine_.workspace,
                               *machine_.localizedText);
        for (auto& application : mainLoop_.run(scanner.scan())) {
            if (application.id() == bundle) return mainLoop_.run(planner.plan(std::move(application)));
        }
        throw std::runtime_error("no " + bundle);
    }

    RemovalResult deletePermanently(const RemovalPlan& plan) {
        AppRemovalService service(pool_.get_executor(), *machine_.fileManager, *machine_.workspace, runner_);
        return mainLoop_.run(service.deletePermanently(plan.items, plan.runningServices, {}));
    }

    TemporaryDirectory directory_;
    Machine machine_;
    MainLoop mainLoop_;
    // Ends first: what it hands back goes to the main loop.
    asio::thread_pool pool_{2};
    FakePrivilegedRunner runner_;
};

TEST_F(RunningApplications, QuitWhenTheyAreRemovedAndNoneOtherDoes) {
    const std::string bundle = "/Applications/Amberfold.app";
    const auto main = bundle + "/Contents/MacOS/Amberfold";
    const auto helper = bundle + "/Contents/Helpers/Companion.app/Contents/MacOS/Companion";
    const std::string foreign = "/Applications/Lumenpress.app/Contents/MacOS/Lumenpress";
    ChildProcess first(install(main));
    ChildProcess second(root() + main);
    ChildProcess companion(install(helper));
    ChildProcess stubborn(root() + helper, {.ignoresRequestsToQuit = true});
    ChildProcess other(install(foreign));

    const auto planned = plan(bundle);
    EXPECT_THAT(planned.runningServices,
                UnorderedElementsAre(RunningService{first.id(), "Amberfold", main},
                                     RunningService{second.id(), "Amberfold", main},
                                     RunningService{companion.id(), "Companion", helper},
                                     RunningService{stubborn.id(), "Companion", helper}));
    const auto result = deletePermanently(planned);

    for (auto* const process : {&first, &second, &companion}) {
        EXPECT_THAT(process->status(), Optional(128 + SIGTERM));
    }
    // Nobody waits for the one that does not listen, nor is it forced.
    EXPECT_THAT(result.removed, Contains(planned.application.url));
    EXPECT_FALSE(std::filesystem::exists(root() + bundle));
    EXPECT_TRUE(stubborn.isUntouched());
    EXPECT_TRUE(other.isUntouched());
}

}  // namespace
}  // namespace orvane::test
