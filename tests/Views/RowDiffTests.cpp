#include "Views/Lists/RowDiff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace orvane {
namespace {

using Keys = std::vector<std::string>;
using enum RowStep::Kind;

std::vector<RowStep> steps(const Keys& oldKeys, const Keys& newKeys) {
    return rowDiff(std::vector<std::string_view>(oldKeys.begin(), oldKeys.end()),
                   std::vector<std::string_view>(newKeys.begin(), newKeys.end()));
}

/// The list that the steps make of the old rows and the new ones.
Keys played(const std::vector<RowStep>& steps, Keys rows, const Keys& newRows) {
    std::ptrdiff_t row = 0;
    for (const RowStep& step : steps) {
        const auto here = rows.begin() + row;
        if (step.kind == remove) {
            rows.erase(here, here + step.count);
            continue;
        }
        if (step.kind == insert) rows.insert(here, newRows.begin() + row, newRows.begin() + row + step.count);
        row += step.count;
    }
    return rows;
}

int kept(const std::vector<RowStep>& steps) {
    return std::accumulate(steps.begin(), steps.end(), 0, [](int sum, const RowStep& step) {
        return sum + (step.kind == keep ? step.count : 0);
    });
}

/// The length of the longest common subsequence, by the textbook.
int longestCommonSubsequence(const Keys& a, const Keys& b) {
    std::vector<std::vector<int>> best(a.size() + 1, std::vector<int>(b.size() + 1, 0));
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j)
            best[i][j] =
                a[i - 1] == b[j - 1] ? best[i - 1][j - 1] + 1 : std::max(best[i - 1][j], best[i][j - 1]);
    return best[a.size()][b.size()];
}

Keys numbered(int count) {
    Keys keys;
    for (int i = 0; i < count; ++i) keys.push_back(std::to_string(i));
    return keys;
}

TEST(RowDiff, FindsNothingToDoBetweenEqualLists) {
    EXPECT_EQ(steps(Keys{}, Keys{}), std::vector<RowStep>{});
    EXPECT_EQ(steps(Keys{"a", "b"}, Keys{"a", "b"}), (std::vector<RowStep>{{keep, 2}}));
}

TEST(RowDiff, FillsAndEmptiesAListInOneStep) {
    EXPECT_EQ(steps(Keys{}, Keys{"a", "b"}), (std::vector<RowStep>{{insert, 2}}));
    EXPECT_EQ(steps(Keys{"a", "b"}, Keys{}), (std::vector<RowStep>{{remove, 2}}));
}

TEST(RowDiff, TakesOneRowOutAndLeavesTheOthers) {
    EXPECT_EQ(steps(Keys{"a", "b", "c"}, Keys{"a", "c"}),
              (std::vector<RowStep>{{keep, 1}, {remove, 1}, {keep, 1}}));
}

TEST(RowDiff, ReplacesInPlace) {
    EXPECT_EQ(steps(Keys{"a", "b", "c"}, Keys{"a", "x", "y", "c"}),
              (std::vector<RowStep>{{keep, 1}, {remove, 1}, {insert, 2}, {keep, 1}}));
}

TEST(RowDiff, MovesARowByRemovingAndInsertingItAlone) {
    EXPECT_EQ(steps(Keys{"a", "b", "c", "d"}, Keys{"b", "c", "d", "a"}),
              (std::vector<RowStep>{{remove, 1}, {keep, 3}, {insert, 1}}));
}

TEST(RowDiff, PairsEqualKeysByTheirOrder) {
    EXPECT_EQ(steps(Keys{"a", "a", "b", "a"}, Keys{"a", "b", "a"}),
              (std::vector<RowStep>{{keep, 1}, {remove, 1}, {keep, 1}, {remove, 1}, {insert, 1}}));
    EXPECT_EQ(steps(Keys{"a", "a"}, Keys{"a", "a", "a"}), (std::vector<RowStep>{{keep, 2}, {insert, 1}}));
}

TEST(RowDiff, TellsKeysApartByEveryByte) {
    using namespace std::string_literals;
    EXPECT_EQ(steps(Keys{"a\0b"s, ""s}, Keys{"a\0c"s, ""s}),
              (std::vector<RowStep>{{remove, 1}, {insert, 1}, {keep, 1}}));
}

TEST(RowDiff, KeepsAsManyUniqueRowsAsPossible) {
    std::mt19937 random(20240);
    for (int round = 0; round < 300; ++round) {
        Keys before = numbered(static_cast<int>(random() % 14));
        Keys after = numbered(static_cast<int>(random() % 14));
        std::shuffle(before.begin(), before.end(), random);
        std::shuffle(after.begin(), after.end(), random);
        const std::vector<RowStep> way = steps(before, after);
        ASSERT_EQ(played(way, before, after), after);
        ASSERT_EQ(kept(way), longestCommonSubsequence(before, after));
    }
}

TEST(RowDiff, LeadsFromAnyListToAnyOther) {
    std::mt19937 random(7);
    const auto anyList = [&random] {
        Keys keys(random() % 30);
        for (std::string& key : keys) key = std::to_string(random() % 12);
        return keys;
    };
    for (int round = 0; round < 2000; ++round) {
        const Keys before = anyList();
        const Keys after = anyList();
        const std::vector<RowStep> way = steps(before, after);
        ASSERT_EQ(played(way, before, after), after);
        for (std::size_t i = 1; i < way.size(); ++i) ASSERT_NE(way[i - 1].kind, way[i].kind);
    }
}

TEST(RowDiff, TakesHundredThousandShuffledRows) {
    const Keys before = numbered(100'000);
    Keys after = before;
    std::shuffle(after.begin(), after.end(), std::mt19937(1));
    const std::vector<RowStep> way = steps(before, after);
    int removed = 0;
    int inserted = 0;
    for (const RowStep& step : way) {
        removed += step.kind == remove ? step.count : 0;
        inserted += step.kind == insert ? step.count : 0;
    }
    EXPECT_EQ(removed, inserted);
    EXPECT_EQ(kept(way) + removed, 100'000);
    EXPECT_GT(kept(way), 300);
}

TEST(RowDiff, TakesHundredThousandEqualKeys) {
    const Keys before(100'000, "same");
    const Keys after(60'000, "same");
    EXPECT_EQ(steps(before, after), (std::vector<RowStep>{{keep, 60'000}, {remove, 40'000}}));
}

}  // namespace
}  // namespace orvane
