#include "Platform/Linux/PolkitRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::HasSubstr;

constexpr const char* dismissal = "Error executing command as another user: Request dismissed\n";

TEST(PromptFailure, PkexecsWordsBecomePlainOnes) {
    EXPECT_THAT(inPlainWords(126, dismissal), HasSubstr("was dismissed"));
    EXPECT_THAT(inPlainWords(127,
                             "Error executing command as another user: Not authorized\n\nThis incident has "
                             "been reported.\n"),
                HasSubstr("not granted"));
    EXPECT_THAT(
        inPlainWords(127, "Error executing command as another user: No authentication agent found.\n"),
        HasSubstr("no authentication agent"));
    EXPECT_THAT(
        inPlainWords(127, "Error getting authority: Error initializing authority: Could not connect\n"),
        HasSubstr("polkit"));
}

TEST(PromptFailure, AWarningBeforeThemIsLeftOut) {
    EXPECT_EQ(inPlainWords(126, std::string("\n** (process:13): WARNING **: words\n") + dismissal),
              inPlainWords(126, dismissal));
}

TEST(PromptFailure, TheCommandsOwnWordsStayAsTheyAre) {
    for (const int status : {0, 1, 2, 126, 127, 137}) {
        for (const std::string words : {"", "rm: cannot remove 'a': Read-only file system\n", "\xff\n"}) {
            EXPECT_EQ(inPlainWords(status, words), words);
        }
        // A name can hold pkexec's words, but it does not begin a line.
        const auto quoted = std::string("rm: ") + dismissal;
        EXPECT_EQ(inPlainWords(status, quoted), quoted);
    }
}

TEST(PromptFailure, WordsThatDoNotFitTheStatusAreNotPkexecs) {
    for (const int status : {0, 1, 127}) EXPECT_EQ(inPlainWords(status, dismissal), dismissal);
}

}  // namespace
}  // namespace orvane
