#include "tests/Fixtures/FoundationData.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "tests/Fixtures/Paths.h"

namespace orvane::test {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::size_t shownDisagreements = 10;
constexpr std::size_t shownRowLength = 600;

std::string text(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

Disagreement checked(const json& row, RowCheck check) {
    try {
        return check(row);
    } catch (const std::exception& error) {
        return std::string("threw: ") + error.what();
    }
}

fs::path foundationFolder() {
    const char* folder = std::getenv("ORVANE_FOUNDATION");
    if (folder != nullptr && *folder != '\0') return folder;
    return fs::path(sourceDirectory()) / "tests" / "foundation";
}

}  // namespace

std::optional<json> foundationFile(const std::string& file) {
    const auto path = foundationFolder() / file;
    if (!fs::exists(path) && std::getenv("ORVANE_FOUNDATION") != nullptr) return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error(path.string() + " cannot be read");
    return json::parse(stream);
}

RowTally tally(const json& rows, RowCheck check) {
    RowTally result;
    for (const auto& row : rows) {
        ++result.rows;
        if (!row.value("binding", true)) {
            ++result.notBinding;
            continue;
        }
        if (const auto disagreement = checked(row, check)) {
            result.disagreements.push_back(*disagreement +
                                           "\n    row: " + text(row).substr(0, shownRowLength));
        } else {
            ++result.agreed;
        }
    }
    return result;
}

void forEachRow(const std::string& file, RowCheck check) {
    forEachRow(
        file, [](const json&) { return false; }, check);
}

void forEachRow(const std::string& file, RowFilter binds, RowCheck check) {
    auto rows = foundationFile(file);
    if (!rows) GTEST_SKIP() << "no " << file << " in the folder that ORVANE_FOUNDATION names";
    ASSERT_TRUE(rows->is_array()) << file << " is no list of rows";
    for (auto& row : *rows) {
        if (binds(row)) row["binding"] = true;
    }

    const auto result = tally(*rows, check);
    const auto binding = result.rows - result.notBinding;
    std::cout << file << ": " << result.agreed << " of " << binding << " binding rows agree ("
              << result.notBinding << " more do not bind)\n";
    EXPECT_GT(binding, 0U) << file << " holds the code to nothing";
    for (std::size_t i = 0; i < result.disagreements.size() && i < shownDisagreements; ++i) {
        ADD_FAILURE() << result.disagreements[i];
    }
    EXPECT_EQ(result.agreed, binding);
}

Disagreement differences(std::initializer_list<Fact> facts) {
    std::string found;
    for (const auto& fact : facts) {
        if (fact.expected == fact.actual) continue;
        if (!found.empty()) found += "; ";
        found += std::string(fact.name) + ": expected " + text(fact.expected) + ", got " + text(fact.actual);
    }
    if (found.empty()) return std::nullopt;
    return found;
}

std::string bytesFromBase64(std::string_view text) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned pending = 0;
    int pendingBits = 0;
    for (const char character : text) {
        if (character == '=') break;
        const auto digit = alphabet.find(character);
        if (digit == std::string_view::npos) throw std::invalid_argument("not base64");
        pending = pending << 6U | static_cast<unsigned>(digit);
        pendingBits += 6;
        if (pendingBits < 8) continue;
        pendingBits -= 8;
        bytes.push_back(static_cast<char>(pending >> static_cast<unsigned>(pendingBits) & 0xFFU));
    }
    return bytes;
}

}  // namespace orvane::test
