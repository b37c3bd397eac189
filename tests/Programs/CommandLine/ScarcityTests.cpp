#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

class Scarcity : public CommandLineTest {
  protected:
    /// Runs the program with no more than so many descriptors.
    ProgramResult runWithDescriptors(int count, std::vector<std::string> arguments) const {
        std::vector<std::string> whole{"/bin/sh", "-c",
                                       "ulimit -n " + std::to_string(count) + "; exec \"$@\"", "sh"};
        for (auto& argument : command(std::move(arguments))) whole.push_back(std::move(argument));
        return runProgram(whole);
    }
};

TEST_F(Scarcity, OfDescriptorsEndsInASmallerListOrOneClearLine) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
    makeApplication("/Applications/Foo.app", "com.example.foo");
    bool hasFailed = false;
    for (int count = 4; count < 24; ++count) {
        SCOPED_TRACE(count);
        const auto result = runWithDescriptors(count, {"list", "--json"});
        // Not even its own libraries could be loaded.
        if (result.status == 127) continue;
        EXPECT_LE(result.status, 2) << result.error;
        EXPECT_LE(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(result.error.empty(), result.status == 0) << result.error;
        if (result.status == 0) {
            EXPECT_TRUE(json::parse(result.output).is_array());
        }
        hasFailed |= result.status != 0;
    }
    EXPECT_TRUE(hasFailed) << "there were descriptors enough";
    EXPECT_EQ(document({"list", "--rescan", "--json"}).size(), 1);
}

}  // namespace
}  // namespace orvane::test
