#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace orvane {

/// One step of the way from an old list of rows to a new one. Steps are taken in order, from the top of the
/// list: `keep` goes past rows that both lists have, `remove` takes old rows out where the way has come to,
/// `insert` puts the next new rows in there and goes past them.
struct RowStep {
    enum class Kind { keep, remove, insert };

    Kind kind = Kind::keep;
    int count = 0;

    friend bool operator==(const RowStep&, const RowStep&) = default;
};

/// The steps from `oldKeys` to `newKeys`. As many rows as possible are kept when the keys are unique; of a
/// key that occurs several times the first occurrences are taken for one another, then the second ones, and
/// so on. A row that moved is removed and inserted. Takes n log n time.
std::vector<RowStep> rowDiff(std::span<const std::string_view> oldKeys,
                             std::span<const std::string_view> newKeys);

}  // namespace orvane
