#include "Programs/Elevation/RemovalOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace orvane {
namespace {

using namespace std::string_literals;

const RemovalOrder trashOrder{"anna",
                              {"trash",
                               {{"daemon", "/Library/LaunchDaemons/d.plist", "/Users/a/.Trash/d 2.plist"},
                                {"item", "/-it's \"a\"\n$(x)\t\xff", "/Users/a/.Trash/-it's"}}}};
const RemovalOrder deleteOrder{"anna", {"delete", {{"item", "/Library/a", ""}}}};

RemovalOrder withSource(const std::string& source) {
    return {"anna", {"delete", {{"item", source, ""}}}};
}

TEST(RemovalOrder, ComesBackAsItWasByteForByte) {
    EXPECT_EQ(decodedOrder(encodedOrder(trashOrder)), trashOrder);
    EXPECT_EQ(decodedOrder(encodedOrder(deleteOrder)), deleteOrder);
}

TEST(RemovalOrder, RandomNamesComeBackAsTheyWere) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        RemovalOrder order{"anna", {"delete", {}}};
        for (int i = 0; i < 3; ++i) {
            std::string name = "/x";
            for (auto length = random() % 40; length > 0; --length) {
                const auto c = static_cast<char>(random() % 255 + 1);
                name += c == '/' ? 'y' : c;
            }
            order.request.items.push_back({"item", name, ""});
        }
        ASSERT_EQ(decodedOrder(encodedOrder(order)), order);
    }
}

TEST(RemovalOrder, EveryCutIsRefused) {
    const auto text = encodedOrder(trashOrder);
    for (std::size_t length = 0; length < text.size(); ++length) {
        const auto decoded = decodedOrder(std::string_view(text).substr(0, length));
        // A cut between two items leaves a whole order, with a number of items that was not authorized.
        const auto items = decoded ? decoded->request.items.size() : 0;
        EXPECT_LT(items, trashOrder.request.items.size()) << length;
    }
}

TEST(RemovalOrder, EveryChangedByteIsRefusedOrAnotherOrder) {
    const auto text = encodedOrder(trashOrder);
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto changed = text;
        changed[at] = static_cast<char>(changed[at] + 1);
        EXPECT_NE(decodedOrder(changed), trashOrder) << at;
    }
}

TEST(RemovalOrder, WhatIsLeftOverIsRefused) {
    for (const auto& rest : {"\0"s, "x"s, "item\0"s, "item\0/a\0"s, "\n"s}) {
        EXPECT_FALSE(decodedOrder(encodedOrder(deleteOrder) + rest));
    }
}

TEST(RemovalOrder, OnlyPlainAbsolutePathsAreTaken) {
    for (const auto* const path : {"", "a", "./a", "/", "//", "//a", "/a/", "/a//b", "/.", "/..", "/a/.",
                                   "/a/..", "/a/../b", "/./a", "-rf /"}) {
        EXPECT_FALSE(decodedOrder(encodedOrder(withSource(path)))) << path;
        EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"trash", {{"item", "/a", path}}}}))) << path;
    }
    for (const auto* const path : {"/a", "/...", "/..a", "/a/.b", "/ ", "/-rf"}) {
        EXPECT_TRUE(decodedOrder(encodedOrder(withSource(path)))) << path;
    }
}

TEST(RemovalOrder, WordsThatItDoesNotKnowAreRefused) {
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"move", {{"item", "/a", ""}}}})));
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"", {{"item", "/a", ""}}}})));
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"delete", {{"agent", "/a", ""}}}})));
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"delete", {{"", "/a", ""}}}})));
}

TEST(RemovalOrder, ADestinationIsThereForTheTrashAndOnlyThen) {
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"delete", {{"item", "/a", "/b"}}}})));
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"trash", {{"item", "/a", ""}}}})));
}

TEST(RemovalOrder, NobodysOrderAndAnOrderForNothingAreRefused) {
    EXPECT_FALSE(decodedOrder(encodedOrder({"", {"delete", {{"item", "/a", ""}}}})));
    EXPECT_FALSE(decodedOrder(encodedOrder({"anna", {"delete", {}}})));
    EXPECT_FALSE(decodedOrder(""));
    EXPECT_FALSE(decodedOrder("\0"s));
}

TEST(RemovalOrder, HasABound) {
    auto order = withSource("/" + std::string(largestOrder, 'x'));
    EXPECT_FALSE(decodedOrder(encodedOrder(order)));
    order.request.items[0].source.resize(largestOrder / 2);
    EXPECT_TRUE(decodedOrder(encodedOrder(order)));
}

TEST(RemovalOrder, CountsItsItemsInWords) {
    EXPECT_EQ(itemCount(1), "1 item");
    EXPECT_EQ(itemCount(2), "2 items");
    EXPECT_EQ(itemCount(12345), "12345 items");
}

}  // namespace
}  // namespace orvane
