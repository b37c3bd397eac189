#include "Platform/Linux/RemovalOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace orvane {
namespace {

using namespace std::string_literals;

using Kind = PrivilegedRequest::Item::Kind;
using testing::HasSubstr;
using testing::Not;

const FileIdentity folder{18446744073709551615U, 2};
const RemovalOrder trashOrder{
    "/mnt/mac",
    {3, 4},
    "/Users/a",
    {RemovalMode::trash,
     {{Kind::daemon, "/Library/LaunchDaemons/d.plist", "/Users/a/.Trash/d 2.plist", folder},
      {Kind::item, "/Users/a/Library/Caches/-it's \"a\"\n$(x)\t\xff", "/Users/a/.Trash/-it's", folder}}}};

RemovalOrder toDelete(const std::vector<std::string>& sources) {
    RemovalOrder order{"/", {1, 1}, "/", {RemovalMode::permanent, {}}};
    for (const auto& source : sources) order.request.items.push_back({Kind::item, source, "", folder});
    return order;
}

RemovalOrder toTrash(const std::string& destination) {
    return {"/", {1, 1}, "/", {RemovalMode::trash, {{Kind::item, "/a", destination, folder}}}};
}

TEST(RemovalOrder, ComesBackAsItWasByteForByte) {
    EXPECT_EQ(decodedOrder(encodedOrder(trashOrder)), trashOrder);
    EXPECT_EQ(decodedOrder(encodedOrder(toDelete({"/Library/a"}))), toDelete({"/Library/a"}));
}

TEST(RemovalOrder, OneThatDiffersInAnythingIsAnother) {
    EXPECT_EQ(trashOrder, RemovalOrder(trashOrder));
    auto another = trashOrder;
    another.root = "/mnt";
    EXPECT_NE(another, trashOrder);
    another = trashOrder;
    another.rootIdentity = {3, 5};
    EXPECT_NE(another, trashOrder);
    another = trashOrder;
    another.home = "/Users/b";
    EXPECT_NE(another, trashOrder);
    another = trashOrder;
    another.request.items.pop_back();
    EXPECT_NE(another, trashOrder);
}

TEST(RemovalOrder, RandomNamesComeBackAsTheyWere) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> names;
        for (int i = 0; i < 3; ++i) {
            std::string name = "/x";
            for (auto length = random() % 40; length > 0; --length) {
                const auto c = static_cast<char>(random() % 255 + 1);
                name += c == '/' ? 'y' : c;
            }
            names.push_back(name);
        }
        const auto order = toDelete(names);
        ASSERT_EQ(decodedOrder(encodedOrder(order)), order);
    }
}

TEST(RemovalOrder, EveryCutIsRefused) {
    const auto text = encodedOrder(trashOrder);
    for (std::size_t length = 0; length < text.size(); ++length) {
        const auto decoded = decodedOrder(std::string_view(text).substr(0, length));
        // A cut between two items leaves a whole order, of which another text was shown.
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
    for (const auto& rest : {"\0"s, "x"s, "item\0"s, "item\0/a\0"s, "item\0/a\0001\0002\0x\0"s, "\n"s}) {
        EXPECT_FALSE(decodedOrder(encodedOrder(toDelete({"/a"})) + rest));
    }
}

TEST(RemovalOrder, OnlyPlainAbsolutePathsAreTaken) {
    for (const auto* const path : {"", "a", "./a", "/", "//", "//a", "/a/", "/a//b", "/.", "/..", "/a/.",
                                   "/a/..", "/a/../b", "/./a", "-rf /"}) {
        EXPECT_FALSE(decodedOrder(encodedOrder(toDelete({path})))) << path;
        EXPECT_FALSE(decodedOrder(encodedOrder(toTrash(path)))) << path;
        auto order = trashOrder;
        order.home = path;
        EXPECT_EQ(decodedOrder(encodedOrder(order)).has_value(), path == "/"s) << path;
        order = trashOrder;
        order.root = path;
        EXPECT_EQ(decodedOrder(encodedOrder(order)).has_value(), path == "/"s) << path;
    }
    for (const auto* const path : {"/a", "/...", "/..a", "/a/.b", "/ ", "/-rf"}) {
        EXPECT_TRUE(decodedOrder(encodedOrder(toDelete({path})))) << path;
    }
}

/// The order's text with the first occurrence of something else in the place of something.
std::string with(const RemovalOrder& order, const std::string& something, const std::string& somethingElse) {
    auto text = encodedOrder(order);
    return text.replace(text.find(something), something.size(), somethingElse);
}

TEST(RemovalOrder, WordsThatItDoesNotKnowAreRefused) {
    const auto order = toDelete({"/a"});
    for (const auto& word : {"move"s, ""s, "Delete"s, "delete "s}) {
        EXPECT_FALSE(decodedOrder(with(order, "\0delete\0"s, "\0"s + word + "\0"s))) << word;
    }
    for (const auto& word : {"agent"s, ""s, "items"s}) {
        EXPECT_FALSE(decodedOrder(with(order, "\0item\0"s, "\0"s + word + "\0"s))) << word;
    }
    EXPECT_FALSE(decodedOrder(with(order, "order 2", "order 1")));
}

TEST(RemovalOrder, ANumberHasOneForm) {
    for (const auto& number :
         {"02"s, "+2"s, " 2"s, "2 "s, "0x2"s, "-2"s, ""s, "18446744073709551616"s, "2.0"s}) {
        EXPECT_FALSE(decodedOrder(with(toDelete({"/a"}), "\0002\0"s, "\0"s + number + "\0"s))) << number;
    }
}

TEST(RemovalOrder, ADestinationIsThereForTheTrashAndOnlyThen) {
    auto order = toDelete({"/a"});
    order.request.items[0].destination = "/b";
    EXPECT_FALSE(decodedOrder(encodedOrder(order)));
    EXPECT_FALSE(decodedOrder(encodedOrder(toTrash(""))));
}

TEST(RemovalOrder, AnOrderForNothingIsRefused) {
    EXPECT_FALSE(decodedOrder(encodedOrder(toDelete({}))));
    EXPECT_FALSE(decodedOrder(""));
    EXPECT_FALSE(decodedOrder("\0"s));
}

TEST(RemovalOrder, ItsLargestIsTakenAndOneByteMoreIsNot) {
    auto order = toDelete({"/"});
    const auto rest = encodedOrder(order).size();
    order.request.items[0].source.append(largestOrder - rest, 'x');
    ASSERT_EQ(encodedOrder(order).size(), largestOrder);
    EXPECT_TRUE(decodedOrder(encodedOrder(order)));
    order.request.items[0].source += 'x';
    EXPECT_FALSE(decodedOrder(encodedOrder(order)));
}

TEST(RemovalOrder, AnItemIsFoundWithItsNumber) {
    const auto text = encodedOrder(trashOrder);
    const auto second = itemOfOrder(
        text, [](const OrderedItem& each) { return each.item.destination == "/Users/a/.Trash/-it's"; });
    ASSERT_TRUE(second);
    EXPECT_EQ(second->number, 2U);
    EXPECT_EQ(second->item, trashOrder.request.items[1]);
    EXPECT_FALSE(itemOfOrder(text, [](const OrderedItem&) { return false; }));
    EXPECT_FALSE(itemOfOrder("x", [](const OrderedItem&) { return true; }));
}

TEST(RemovalOrder, ItsHeaderIsTheOrderWithoutItems) {
    auto header = trashOrder;
    header.request.items.clear();
    EXPECT_EQ(headerOfOrder(encodedOrder(trashOrder)), header);
    EXPECT_FALSE(headerOfOrder("orvane removal order 2"));
}

TEST(PromptText, TellsWhatBecomesOfHowManyAndTheFirstNames) {
    EXPECT_EQ(promptText(toDelete({"/x/one"})), "delete 1 item permanently: “one”");
    EXPECT_EQ(promptText(toTrash("/b")), "move 1 item to the Trash: “a”");
    EXPECT_EQ(promptText(toDelete({"/1", "/2", "/3"})), "delete 3 items permanently: “1”, “2”, “3”");
    EXPECT_EQ(promptText(toDelete({"/1", "/2", "/3", "/4"})),
              "delete 4 items permanently: “1”, “2”, “3” and 1 more");
    EXPECT_EQ(promptText(toDelete({"/1", "/2", "/3", "/4", "/Applications/Foo.APP"})),
              "delete 5 items permanently: “Foo.APP”, “1”, “2” and 2 more")
        << "the application first";
}

TEST(PromptText, WhatCouldMisleadIsAQuestionMark) {
    const auto shown = [](const std::string& name) { return promptText(toDelete({"/" + name})); };
    for (const auto& sign : {"\n"s,     "\x1B"s,   "\x7F"s,   "<"s,          ">"s,      "&"s,      "$"s,
                             "`"s,      "\""s,     "\\"s,     "“"s,          "”"s,      "\u202E"s, "\u200B"s,
                             "\u2066"s, "\u2028"s, "\uFEFF"s, "\U000E0041"s, "\u00AD"s, "\u0085"s}) {
        EXPECT_EQ(shown("a" + sign + "b"), "delete 1 item permanently: “a?b”");
    }
    EXPECT_EQ(shown("a\xff\xfe"), "delete 1 item permanently: “a\uFFFD\uFFFD”");
    EXPECT_EQ(shown("Größe, it's (2) — 日本 \U0001F600.app"),
              "delete 1 item permanently: “Größe, it's (2) — 日本 \U0001F600.app”");
}

TEST(PromptText, ALongNameIsCut) {
    const auto cut = promptText(toDelete({"/" + std::string(200, 'x')}));
    EXPECT_EQ(cut, "delete 1 item permanently: “" + std::string(48, 'x') + "…”");
    EXPECT_THAT(promptText(toDelete({"/" + std::string(48, 'x')})), Not(HasSubstr("…")));
}

}  // namespace
}  // namespace orvane
