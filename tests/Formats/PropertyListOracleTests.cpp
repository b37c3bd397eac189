#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "Formats/PropertyList.h"
#include "Text/UTF8.h"
#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/Paths.h"

namespace orvane::test {
namespace {

using nlohmann::json;

/// What tests/Formats/random-property-lists.py prints.
json randomLists(int seed, int count) {
    const std::string command = "python3 '" + sourceDirectory() +
                                "/tests/Formats/random-property-lists.py' " + std::to_string(seed) + " " +
                                std::to_string(count);
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    if (!pipe) return nullptr;
    std::string output;
    std::string chunk(1 << 16, '\0');
    while (const auto size = std::fread(chunk.data(), 1, chunk.size(), pipe.get()))
        output.append(chunk, 0, size);
    return json::parse(output, nullptr, false);
}

json sayable(const PropertyList& list) {
    if (const auto* text = list.string()) return *text;
    if (const auto flag = list.boolean()) return *flag;
    if (const auto integer = list.integer()) return *integer;
    if (const auto real = list.real()) return std::isfinite(*real) ? json(*real) : json();
    if (const auto* elements = list.array()) {
        auto result = json::array();
        for (const auto& element : *elements) result.push_back(sayable(element));
        return result;
    }
    if (const auto* entries = list.dictionary()) {
        auto result = json::object();
        for (const auto& [key, entry] : *entries) result[key] = sayable(entry);
        return result;
    }
    return nullptr;
}

TEST(PropertyListOracle, ReadsRandomListsAsPythonDoes) {
    const auto lists = randomLists(1, 200);
    ASSERT_EQ(lists.size(), 400U) << "Python gave no lists";
    for (const auto& row : lists) {
        const auto bytes = bytesFromBase64(row.at("base64").get<std::string>());
        const auto list = PropertyList::parse(bytes);
        ASSERT_TRUE(list) << bytes;
        ASSERT_EQ(sayable(*list), row.at("value")) << bytes;
    }
}

/// Goes through all of a list, as its users may; gives the number of objects.
std::size_t walk(const PropertyList& root) {
    std::size_t met = 0;
    std::vector<const PropertyList*> open{&root};
    while (!open.empty()) {
        const auto* list = open.back();
        open.pop_back();
        ++met;
        EXPECT_TRUE(list->string() == nullptr || isValidUTF8(*list->string()));
        if (const auto* elements = list->array()) {
            for (const auto& element : *elements) open.push_back(&element);
        }
        if (const auto* entries = list->dictionary()) {
            for (const auto& entry : *entries) open.push_back(&entry.second);
        }
    }
    return met;
}

TEST(PropertyListOracle, TakesDamagedListsForListsOrForNone) {
    const auto lists = randomLists(2, 50);
    ASSERT_EQ(lists.size(), 100U) << "Python gave no lists";
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
            const auto list = PropertyList::parse(damaged);
            (list ? read : refused) += 1;
            EXPECT_LE(list ? walk(*list) : 0, PropertyList::maximumObjects);
        }
    }
    EXPECT_GT(read, 500U);
    EXPECT_GT(refused, 500U);
}

}  // namespace
}  // namespace orvane::test
