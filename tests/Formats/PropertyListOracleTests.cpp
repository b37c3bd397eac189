#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "Formats/PropertyList.h"
#include "Text/UTF8.h"
#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/PropertyListTree.h"
#include "tests/Fixtures/RandomPropertyLists.h"

namespace orvane::test {
namespace {

using nlohmann::json;

TEST(PropertyListOracle, ReadsWhatPythonHasWritten) {
    const auto lists = randomPropertyLists(1, 200);
    ASSERT_EQ(lists.size(), 600U) << "Python gave no lists";
    for (const auto& row : lists) {
        const auto bytes = bytesFromBase64(row.at("base64").get<std::string>());
        const auto list = propertyListTree(bytes);
        ASSERT_TRUE(list) << bytes;
        ASSERT_EQ(sayablePropertyList(bytes), row.at("value")) << bytes;
        const auto label = list->is_object() ? list->value("Label", json()) : json();
        const auto asked = propertyListText(bytes, "Label");
        ASSERT_EQ(asked ? json(*asked) : json(), label.is_string() ? label : json()) << bytes;
    }
}

/// Goes through all of a list; gives the number of objects.
std::size_t walk(const json& root) {
    std::size_t met = 0;
    std::vector<const json*> open{&root};
    while (!open.empty()) {
        const auto* list = open.back();
        open.pop_back();
        ++met;
        EXPECT_TRUE(!list->is_string() || isValidUTF8(list->get<std::string>()));
        if (!list->is_structured()) continue;
        for (const auto& entry : list->items()) {
            EXPECT_TRUE(!list->is_object() || isValidUTF8(entry.key()));
            open.push_back(&entry.value());
        }
    }
    return met;
}

TEST(PropertyListOracle, TakesDamagedListsForListsOrForNone) {
    const auto lists = randomPropertyLists(2, 50);
    ASSERT_EQ(lists.size(), 150U) << "Python gave no lists";
    std::mt19937 random(3);
    std::size_t read = 0;
    std::size_t refused = 0;
    for (const auto& row : lists) {
        const auto bytes = bytesFromBase64(row.at("base64").get<std::string>());
        for (int round = 0; round < 60; ++round) {
            auto damaged = bytes;
            if (round % 4 == 0) damaged.resize(random() % damaged.size());
            for (auto flips = random() % 4; flips > 0 && !damaged.empty(); --flips) {
                damaged[random() % damaged.size()] = static_cast<char>(random());
            }
            const auto list = propertyListTree(damaged);
            (list ? read : refused) += 1;
            EXPECT_LE(list ? walk(*list) : 0, PropertyListLimits::objects);
        }
    }
    EXPECT_GT(read, 500U);
    EXPECT_GT(refused, 500U);
}

/// Pieces of all that old style is made of, in any order.
TEST(PropertyListOracle, TakesRandomPiecesOfOldStyleForAListOrForNone) {
    constexpr std::array<std::string_view, 40> pieces{
        "{",    "}",   "(",     ")",    "<",    ">",      "=",    ";",
        ",",    "\"",  "'",     "a",    "b.c",  "0f",     "/",    "//",
        "/*",   "*/",  "\n",    " ",    "\\",   "\\U",    "d83e", "\\Uddf9",
        "\\1",  "777", "\\n",   "\\\"", "é",    "\u2028", "\xFF", std::string_view("\0", 1),
        "a=b;", "c;",  "{a=b;", "(a,",  "<ab>", "\"a\"=", "'\\'", "\xEF\xBB\xBF"};
    std::mt19937 random(5);
    std::size_t read = 0;
    std::size_t refused = 0;
    for (int round = 0; round < 50'000; ++round) {
        std::string bytes;
        for (auto count = random() % 12; count > 0; --count) bytes += pieces.at(random() % pieces.size());
        if (round % 8 == 0) bytes.insert(0, random() % 2 == 0 ? "\xFE\xFF" : "\xFF\xFE");
        const auto list = propertyListTree(bytes);
        (list ? read : refused) += 1;
        if (list) walk(*list);
    }
    EXPECT_GT(read, 1000U);
    EXPECT_GT(refused, 1000U);
}

}  // namespace
}  // namespace orvane::test
