#include "tests/Programs/Elevation/AuthorizationFixture.h"

namespace orvane {
namespace {

using test::asUnprivilegedUser;
using test::AuthorizationSystem;
using testing::HasSubstr;
using testing::SizeIs;

class AuthorizationFailures : public AuthorizationFixture {};

struct Refusal {
    const char* answer;
    const char* reason;
};

class AuthorizationRefusals : public AuthorizationFixture, public testing::WithParamInterface<Refusal> {};

TEST_P(AuthorizationRefusals, EachIsAFailureWithAReasonAndTheDiskIsUntouched) {
    const auto items = madeItems(2);
    const auto before = volume_.listing();
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({GetParam().answer});
            for (int i = 1; i <= repetitions; ++i) {
                expectAllFailed(moveToTrash(items), items.size(), GetParam().reason);
                EXPECT_THAT(system.prompts(), SizeIs(i)) << "one prompt for each batch, and no second try";
            }
        });
    });
    EXPECT_EQ(volume_.listing(), before);
}

INSTANTIATE_TEST_SUITE_P(Answers, AuthorizationRefusals,
                         testing::Values(Refusal{"dismiss", dismissed}, Refusal{"refuse", notAuthorized},
                                         Refusal{"fail", notAuthorized},
                                         Refusal{"kill", "Administrator permission was not granted."}),
                         [](const auto& refusal) { return refusal.param.answer; });

TEST_F(AuthorizationFailures, AnAgentThatDiesInThePromptIsARefusalAndThenThereIsNone) {
    const auto items = madeItems(1);
    runAsUser({"die"}, [&](const AuthorizationSystem& system) {
        expectAllFailed(deletePermanently(items), 1, notAuthorized);
        expectAllFailed(deletePermanently(items), 1, noAgent);
        EXPECT_THAT(system.prompts(), SizeIs(1));
    });
    EXPECT_TRUE(volume_.contains(agent("0")));
}

TEST_F(AuthorizationFailures, AWrongPasswordIsARefusal) {
    const auto items = madeItems(1);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.letNoPasswordPass();
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            expectAllFailed(deletePermanently(items), 1, notAuthorized);
            EXPECT_THAT(system.prompts(), SizeIs(1));
        });
    });
    EXPECT_TRUE(volume_.contains(agent("0")));
}

TEST_F(AuthorizationFailures, AMachineWhoseRulesSayNoAsksNobody) {
    const auto items = madeItems(1);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.addRule("NO");
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            expectAllFailed(deletePermanently(items), 1, notAuthorized);
            EXPECT_THAT(system.prompts(), testing::IsEmpty());
        });
    });
    EXPECT_TRUE(volume_.contains(agent("0")));
}

TEST_F(AuthorizationFailures, ARefusedBatchCanBeAskedForAgain) {
    const auto items = madeItems(2);
    runAsUser({"dismiss", "refuse", "approve"}, [&](const AuthorizationSystem& system) {
        expectAllFailed(deletePermanently(items), 2, dismissed);
        expectAllFailed(deletePermanently(items), 2, notAuthorized);
        EXPECT_THAT(deletePermanently(items).removed, SizeIs(2));
        EXPECT_THAT(system.prompts(), SizeIs(3));
    });
}

TEST_F(AuthorizationFailures, WhereNobodyCanBeAskedTheReasonSaysSo) {
    const auto items = madeItems(2);
    const auto before = volume_.listing();
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        const auto removeAs = [&](const char* reason) {
            asUnprivilegedUser([&] { expectAllFailed(deletePermanently(items), items.size(), reason); });
        };
        removeAs(noAuthority);
        system.startBus();
        removeAs(noAuthority);
        system.startAuthority();
        removeAs(noAgent);
        AuthorizationSystem::breakProgram("/usr/bin/pkexec");
        removeAs("Permission denied");
    });
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(AuthorizationFailures, AToolThatCannotRunIsToldInTheShellsWordsAndIsNoDismissal) {
    const auto items = madeItems(1);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        AuthorizationSystem::breakProgram(rootTool());
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            const auto result = deletePermanently(items);
            ASSERT_THAT(result.failed, SizeIs(1));
            // The shell's status is 126, as it is after a dismissal.
            EXPECT_THAT(result.failed[0].reason, HasSubstr("orvane-root-tool: Permission denied"));
        });
    });
}

TEST_F(AuthorizationFailures, APromptWhoseAskerIsGoneIsTakenAwayAndNothingIsRemoved) {
    const auto items = madeItems(1);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.start();
        const auto asker = startAsker([&] {
            system.startAgent({"abandon"});
            deletePermanently(items);
        });
        EXPECT_TRUE(WIFSIGNALED(statusOf(asker))) << "killed by the agent";
        mainLoop_.runUntil([&] {
            const auto prompts = system.prompts();
            return prompts.size() == 1 && prompts[0].isTakenAway;
        });
    });
    EXPECT_TRUE(volume_.contains(agent("0")));
}

}  // namespace
}  // namespace orvane
