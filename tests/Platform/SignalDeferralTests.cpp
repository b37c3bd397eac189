#include "Platform/Posix/SignalDeferral.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

constexpr int notOffered = 77;
constexpr int requestsToEnd[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

/// From now on a change of an entry's attributes in a folder sends this process a signal, before the call
/// that changes them has returned. False where the kernel does not offer that.
bool signalAtAttributeChanges(const FileDescriptor& folder, int signal) {
    return ::fcntl(folder.get(), F_SETSIG, signal) == 0 && ::fcntl(folder.get(), F_NOTIFY, DN_ATTRIB) == 0;
}

/// Heeds every request to end, as a program does that a person has started: what is started in the background
/// may have been told to ignore some. Leaves no core file.
void heedRequestsToEnd() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    for (const int request : requestsToEnd) ::signal(request, SIG_DFL);
}

class SignalDeferralDeathTest : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(SignalDeferralDeathTest, HoldsARequestToEndBackUntilItEnds) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer delivers signals late";
#endif
    for (const int request : requestsToEnd) {
        EXPECT_EXIT(
            {
                heedRequestsToEnd();
                {
                    const SignalDeferral deferral;
                    ::kill(::getpid(), request);
                    std::fputs("held back", stderr);
                }
                std::_Exit(0);
            },
            testing::KilledBySignal(request), "held back");
    }
}

TEST_F(SignalDeferralDeathTest, HoldsItBackInEveryThreadUntilTheLastOneEnds) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer delivers signals late";
#endif
    EXPECT_EXIT(
        {
            heedRequestsToEnd();
            auto outer = std::make_unique<SignalDeferral>();
            const SignalDeferral inner;
            std::thread([&] {
                ::kill(::getpid(), SIGTERM);
                outer.reset();
            }).join();
            std::fputs("held back", stderr);
        },
        testing::KilledBySignal(SIGTERM), "held back");
}

TEST_F(SignalDeferralDeathTest, LeavesWhatIsIgnoredOrHandledAsItIs) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer delivers signals late";
#endif
    EXPECT_EXIT(
        {
            ::signal(SIGHUP, SIG_IGN);
            ::signal(SIGINT, [](int) { std::_Exit(7); });
            {
                const SignalDeferral deferral;
                ::raise(SIGHUP);
            }
            const SignalDeferral deferral;
            ::raise(SIGINT);
            std::_Exit(0);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(SignalDeferralDeathTest, IsOverWhenItHasEnded) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer delivers signals late";
#endif
    EXPECT_EXIT(
        {
            heedRequestsToEnd();
            { const SignalDeferral deferral; }
            ::raise(SIGTERM);
            std::_Exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
}

TEST(SignalDeferral, AFolderMovedToTheTrashHasItsModeAgainBeforeTheProgramEnds) {
    for (const int request : requestsToEnd) {
        const TestVolume mac;
        mac.makeFile("/Applications/Foo.app/file");
        mac.giveEverythingToUnprivilegedUser();
        asUnprivilegedUser([&] {
            const auto application = mac.machinePath("/Applications/Foo.app");
            ASSERT_EQ(::chmod(application.c_str(), 0500), 0);
            ASSERT_TRUE(mac.files().createDirectory(url("/Users/sample/.Trash")));
            ASSERT_EQ(::chmod(mac.machinePath("/Users/sample/.Trash").c_str(), 0700), 0);
            const pid_t child = ::fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                heedRequestsToEnd();
                const FileDescriptor folder(::open(mac.machinePath("/Applications").c_str(), O_RDONLY));
                if (!signalAtAttributeChanges(folder, request)) ::_exit(notOffered);
                ::_exit(trashItem(mac.files(), url("/Applications/Foo.app")) ? 0 : 1);
            }
            int status = 0;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            if (WIFEXITED(status) && WEXITSTATUS(status) == notOffered)
                GTEST_SKIP() << "no such signals here";
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == request) << status;
            struct stat trashed {};
            ASSERT_EQ(::stat(mac.machinePath("/Users/sample/.Trash/Foo.app").c_str(), &trashed), 0);
            EXPECT_EQ(trashed.st_mode & 07777, 0500U);
        });
    }
}

}  // namespace
}  // namespace orvane::test
