#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "Views/Desktop/SystemSymbol.h"
#include "tests/Fixtures/Paths.h"

namespace orvane::test {
namespace {

/// The names of the symbols that the window shows, but for the one that is none of the system's.
std::vector<std::string> symbols() {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(sourceDirectory() + "/src/Views/Symbols")) {
        const auto name = file.path().stem().string();
        if (file.path().extension() == ".svg" && name != "tick") names.push_back(name);
    }
    return names;
}

bool isDrawn(char opacity) {
    return static_cast<unsigned char>(opacity) >= 0x80;
}

TEST(SystemSymbol, TheSystemHasEachOneThatIsAskedFor) {
    ASSERT_GT(symbols().size(), 30U);
    for (const auto& name : symbols()) {
        const auto opacities = systemSymbol(name, 28, 28);
        ASSERT_TRUE(opacities) << name;
        ASSERT_EQ(opacities->size(), 28U * 28U) << name;
        const auto drawn = std::ranges::count_if(*opacities, isDrawn);
        EXPECT_GT(drawn, 20) << name;
        EXPECT_LT(drawn, 28 * 28) << name;
    }
}

TEST(SystemSymbol, WhatTheSystemHasNotIsNone) {
    EXPECT_FALSE(systemSymbol("tick", 28, 28));
}

/// The first and the last row that anything is drawn in.
std::pair<std::size_t, std::size_t> rowsOf(const std::string& opacities, std::size_t width) {
    const auto first = std::ranges::find_if(opacities, isDrawn) - opacities.begin();
    const auto last = std::find_if(opacities.rbegin(), opacities.rend(), isDrawn).base() - opacities.begin();
    return {static_cast<std::size_t>(first) / width, (static_cast<std::size_t>(last) - 1) / width};
}

TEST(SystemSymbol, IsDrawnUprightAndAsLargeAsItsPlaceAllows) {
    const auto lock = systemSymbol("lock.fill", 100, 100);
    ASSERT_TRUE(lock);
    // A lock is heavier below.
    const auto upper = std::count_if(lock->begin(), lock->begin() + 5000, isDrawn);
    const auto lower = std::count_if(lock->begin() + 5000, lock->end(), isDrawn);
    EXPECT_GT(lower, upper);
    const auto [first, last] = rowsOf(*lock, 100);
    EXPECT_GT(last - first, 60U);
}

}  // namespace
}  // namespace orvane::test
