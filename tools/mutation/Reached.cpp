// In each program of tests that tools/mutate makes: says which places every test has reached, those in the
// programs that it started as well.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/mutation/Mutation.h"

namespace {

class Reached : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& test) override {
        auto& reached = mutation::memory().reached;
        std::printf("\n[reached] %s.%s %d %lld", test.test_suite_name(), test.name(),
                    test.result()->Passed() ? 1 : 0, static_cast<long long>(test.result()->elapsed_time()));
        for (std::size_t number = 0; number < sizeof reached; ++number)
            if (reached[number] != 0) std::printf(" %zu", number);
        std::printf("\n");
        std::fflush(stdout);
        std::memset(reached, 0, sizeof reached);
    }
};

const bool isListening = [] {
    mutation::memory();
    if (std::getenv("ORVANE_REACHED") != nullptr)
        testing::UnitTest::GetInstance()->listeners().Append(new Reached);
    return true;
}();

}  // namespace
