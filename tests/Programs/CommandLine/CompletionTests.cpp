#include <gmock/gmock.h>

#include <filesystem>

#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

using testing::UnorderedElementsAre;

class CompletionTest : public CommandLineTest {
  protected:
    std::vector<std::string> words() const {
        const auto result = run({"complete"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, "");
        std::vector<std::string> words;
        std::string word;
        for (const char c : result.output) {
            if (c != '\0') {
                word += c;
                continue;
            }
            words.push_back(std::move(word));
            word.clear();
        }
        EXPECT_EQ(word, "") << "each word ends in a NUL";
        return words;
    }
};

TEST_F(CompletionTest, ANameThatSeveralHaveIsAPath) {
    makeApplication("Applications/One.app", "org.example.one");
    makeApplication("Applications/Two.app", "org.example.two");
    makeApplication("Users/sample/Applications/Two.app", "org.example.two");
    makeApplication("Applications/-Three.app", "org.example.three");
    EXPECT_THAT(words(),
                UnorderedElementsAre("One", "/Applications/Two.app", "/Users/sample/Applications/Two.app",
                                     "/Applications/-Three.app"));
}

TEST_F(CompletionTest, EveryWordIsOneThatAPlanTakes) {
    makeApplication("Applications/One's \"own\" $(thing)\n.app", "org.example.one");
    makeApplication("Applications/file:two.app", "org.example.two");
    makeApplication("Applications/--.app", "org.example.three");
    for (const auto& word : words()) EXPECT_EQ(run({"plan", word}).status, 0) << word;
    EXPECT_EQ(words().size(), 3U);
}

TEST_F(CompletionTest, LeavesTheDiskAsItIs) {
    makeApplication("Applications/One.app", "org.example.one");
    const auto before = volume.listing();
    words();
    EXPECT_EQ(volume.listing(), before);
}

TEST_F(CompletionTest, KnowsWhatIsSaved) {
    makeApplication("Applications/One.app", "org.example.one");
    run({"list"});
    std::filesystem::remove_all(volume.path("Applications/One.app"));
    EXPECT_THAT(words(), UnorderedElementsAre("One"));
}

}  // namespace
}  // namespace orvane::test
