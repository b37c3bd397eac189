#include "tests/Programs/Elevation/HostileCaller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/Fixtures/PrivateMounts.h"

namespace orvane::test {
namespace {

using testing::IsEmpty;

/// scripts/prove tries more.
constexpr std::uint64_t rounds = 400;
constexpr std::uint64_t seed = 20261122;

/// Runs `body` with the caller, where there can be one.
void withHostileCaller(FunctionRef<void(HostileCaller&)> body) {
    // Read before they may be out of sight.
    const auto programs = InstalledRootPart::builtPrograms();
    inPrivateMounts([&] {
        if (!HostileCaller::isPossible()) GTEST_SKIP() << "only root can give files to others";
        HostileCaller caller(programs, seed);
        body(caller);
    });
}

TEST(HostileCaller, ChangesNothingButWhatAPlanHoldsWhateverItAsksFor) {
    withHostileCaller([](HostileCaller& caller) {
        for (std::uint64_t round = 0; round < rounds; ++round) {
            ASSERT_THAT(caller.ask(), IsEmpty()) << "round " << round << ": " << caller.asked();
        }
        // The test is worth something only if some orders are carried out, in both ways.
        EXPECT_GT(caller.carriedOut(), rounds / 100);
        EXPECT_LT(caller.carriedOut(), rounds * 9 / 10);
    });
}

TEST(HostileCaller, HarmIsNoticed) {
    withHostileCaller([](HostileCaller& caller) { EXPECT_THAT(caller.unnoticedHarm(), IsEmpty()); });
}

}  // namespace
}  // namespace orvane::test
