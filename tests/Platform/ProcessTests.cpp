#include "Platform/Posix/Process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <string>
#include <system_error>

namespace orvane {
namespace {

// Who ignores that programs end is not told how.
TEST(Process, ThatNobodyCanTellOfEndsWithAnUnknownStatus) {
    auto* const before = std::signal(SIGCHLD, SIG_IGN);
    const auto child = startProgram({"/bin/true"});
    const int status = child ? waitForTermination(*child) : 0;
    std::signal(SIGCHLD, before);
    EXPECT_EQ(status, 255);
}

TEST(Process, IsNotStartedWhereNoDescriptorIsLeftForItsAnswer) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{STDERR_FILENO + 1, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto end = runToEnd({"/bin/true"});
    ::setrlimit(RLIMIT_NOFILE, &before);
    ASSERT_FALSE(end);
    EXPECT_EQ(end.error(), std::errc::too_many_files_open);
}

TEST(Process, IsHeardToItsLastByte) {
    for (const std::size_t count : {0U, 1U, 5'000U}) {
        const auto end = runToEnd({"/bin/sh", "-c", "printf '%*s' " + std::to_string(count) + " '' >&2"});
        ASSERT_TRUE(end);
        EXPECT_EQ(end->status, 0);
        EXPECT_EQ(end->standardError, std::string(count, ' '));
    }
}

}  // namespace
}  // namespace orvane
