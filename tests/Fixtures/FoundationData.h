#pragma once

#include <cstddef>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Text/FunctionRef.h"

namespace orvane::test {

/// Where the code answers otherwise than a row of facts; absent when they agree.
using Disagreement = std::optional<std::string>;
using RowCheck = FunctionRef<Disagreement(const nlohmann::json& row)>;
using RowFilter = FunctionRef<bool(const nlohmann::json& row)>;

/// How the code did against the rows of one file.
struct RowTally {
    std::size_t rows = 0;
    /// Rows that hold the code to nothing; they are not checked.
    std::size_t notBinding = 0;
    std::size_t agreed = 0;
    /// One text per row that disagrees, with the row.
    std::vector<std::string> disagreements;
};

/// One of the foundation's files whole, for those that are more than a list of rows; absent when the folder
/// that ORVANE_FOUNDATION names has no such file.
std::optional<nlohmann::json> foundationFile(const std::string& file);

/// Checks every binding row. A check that throws disagrees.
RowTally tally(const nlohmann::json& rows, RowCheck check);

/// Holds the code to every binding row of one of the foundation's files ("file-urls.json"), in the folder
/// that ORVANE_FOUNDATION names, else in tests/foundation. Prints how many rows agreed; fails the test when
/// one does not, or when the file has no row that binds; skips it when that other folder has no such file.
void forEachRow(const std::string& file, RowCheck check);

/// The same; the rows that a filter takes bind, whatever they say of it themselves.
void forEachRow(const std::string& file, RowFilter binds, RowCheck check);

/// One fact: what a row says of something, and what the code says.
struct Fact {
    std::string_view name;
    nlohmann::json expected;
    nlohmann::json actual;
};

/// The facts that differ, as one text.
Disagreement differences(std::initializer_list<Fact> facts);

/// The bytes that a row holds in base64.
std::string bytesFromBase64(std::string_view text);

}  // namespace orvane::test
