#include "Views/Lists/RowDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace orvane {
namespace {

constexpr int none = -1;

/// For each old row the new row with its key: the first occurrence for the first, the second for the second.
std::vector<int> counterparts(std::span<const std::string_view> oldKeys,
                              std::span<const std::string_view> newKeys) {
    // The next unclaimed new row of each key, and behind every new row the next one of the same key.
    std::unordered_map<std::string_view, int> next;
    std::vector<int> following(newKeys.size(), none);
    for (std::size_t i = newKeys.size(); i-- > 0;) {
        const auto [entry, isNew] = next.try_emplace(newKeys[i], none);
        following[i] = std::exchange(entry->second, static_cast<int>(i));
    }
    std::vector<int> result(oldKeys.size(), none);
    for (std::size_t i = 0; i < oldKeys.size(); ++i) {
        const auto entry = next.find(oldKeys[i]);
        if (entry == next.end() || entry->second == none) continue;
        result[i] = entry->second;
        entry->second = following[static_cast<std::size_t>(entry->second)];
    }
    return result;
}

/// The indices of a longest increasing run of values, gaps allowed and absent values left out.
std::vector<int> longestIncreasingSubsequence(const std::vector<int>& values) {
    // tails[n] is the index of the smallest value that ends an increasing run of n + 1 values.
    std::vector<int> tails;
    std::vector<int> predecessors(values.size(), none);
    const auto valueAt = [&](int index) { return values[static_cast<std::size_t>(index)]; };
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i] == none) continue;
        const auto tail = std::ranges::lower_bound(tails, values[i], {}, valueAt);
        if (tail != tails.begin()) predecessors[i] = *(tail - 1);
        if (tail == tails.end())
            tails.push_back(static_cast<int>(i));
        else
            *tail = static_cast<int>(i);
    }
    std::vector<int> result(tails.size());
    int index = tails.empty() ? none : tails.back();
    for (auto slot = result.rbegin(); slot != result.rend(); ++slot) {
        *slot = index;
        index = predecessors[static_cast<std::size_t>(index)];
    }
    return result;
}

}  // namespace

std::vector<RowStep> rowDiff(std::span<const std::string_view> oldKeys,
                             std::span<const std::string_view> newKeys) {
    std::vector<RowStep> steps;
    const auto add = [&steps](RowStep::Kind kind, int count) {
        if (count == 0) return;
        if (!steps.empty() && steps.back().kind == kind)
            steps.back().count += count;
        else
            steps.push_back({kind, count});
    };
    // What both begin with stays, and mostly that is all.
    const auto firstDifference = std::ranges::mismatch(oldKeys, newKeys);
    const auto same = static_cast<std::size_t>(firstDifference.in1 - oldKeys.begin());
    add(RowStep::Kind::keep, static_cast<int>(same));
    oldKeys = oldKeys.subspan(same);
    newKeys = newKeys.subspan(same);

    const std::vector<int> newRowOf = counterparts(oldKeys, newKeys);
    int oldRow = 0;
    int newRow = 0;
    const auto advanceTo = [&](int oldEnd, int newEnd) {
        add(RowStep::Kind::remove, oldEnd - oldRow);
        add(RowStep::Kind::insert, newEnd - newRow);
        oldRow = oldEnd;
        newRow = newEnd;
    };
    for (const int kept : longestIncreasingSubsequence(newRowOf)) {
        advanceTo(kept, newRowOf[static_cast<std::size_t>(kept)]);
        add(RowStep::Kind::keep, 1);
        ++oldRow;
        ++newRow;
    }
    advanceTo(static_cast<int>(oldKeys.size()), static_cast<int>(newKeys.size()));
    return steps;
}

}  // namespace orvane
