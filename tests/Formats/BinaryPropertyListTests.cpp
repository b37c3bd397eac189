#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "Formats/PropertyList.h"
#include "tests/Fixtures/BinaryPropertyListWriter.h"
#include "tests/Fixtures/PropertyListTree.h"

namespace orvane::test {
namespace {

using nlohmann::json;
using Writer = BinaryPropertyListWriter;
using namespace std::string_literals;

std::optional<json> readObject(const std::string& object) {
    Writer writer;
    writer.add(object);
    return propertyListTree(writer.written(0));
}

TEST(BinaryPropertyList, ReadsEveryType) {
    EXPECT_EQ(*readObject("\x08"), false);
    EXPECT_EQ(*readObject("\x09"), true);
    EXPECT_EQ(*readObject("\x22" + Writer::bigEndian(0x3FC00000, 4)), 1.5);
    EXPECT_EQ(*readObject("\x23" + Writer::bigEndian(0x3FF8000000000000, 8)), 1.5);
    EXPECT_EQ(*readObject("\x51x"), "x");
    EXPECT_TRUE(readObject("\x33" + Writer::bigEndian(0, 8)));
    EXPECT_TRUE(readObject("\x42\x01\x02"));
    EXPECT_TRUE(readObject("\x80\x05"));
    EXPECT_EQ(*readObject("\xA0"), json::array());
    EXPECT_EQ(*readObject("\xD0"), json::object());
}

TEST(BinaryPropertyList, ReadsIntegersOf64BitsAndNoLarger) {
    EXPECT_EQ(*readObject("\x10\xFF"), 255);
    EXPECT_EQ(*readObject("\x12\xFF\xFF\xFF\xFF"), 4294967295);
    EXPECT_EQ(*readObject("\x13" + std::string(8, '\xFF')), -1);
    EXPECT_EQ(*readObject("\x14" + std::string(16, '\xFF')), -1);
    EXPECT_EQ(*readObject("\x14" + std::string(8, '\0') + std::string(8, '\xFF')), nullptr);
    EXPECT_FALSE(readObject("\x14" + std::string(7, '\0') + "\x01" + std::string(8, '\0')));
    EXPECT_FALSE(readObject("\x14" + std::string(8, '\xFF') + std::string(8, '\0')));
    EXPECT_FALSE(readObject("\x15" + std::string(32, '\0')));
}

TEST(BinaryPropertyList, ReadsTextInUTF16) {
    EXPECT_EQ(*readObject("\x63\x65\xE5\xD8\x3E\xDD\xF9"s), "日🧹");
    EXPECT_FALSE(readObject("\x61\xD8\x3E"s)) << "half of a pair";
    EXPECT_FALSE(readObject("\x61\xDD\xF9"s)) << "the other half";
    EXPECT_FALSE(readObject("\x62\xD8\x3E\0A"s));
    EXPECT_FALSE(readObject("\x62\xD8\x3E\xD8\x3E"s));
}

TEST(BinaryPropertyList, ReadsABadLetterOfASCIITextAsLatin1) {
    EXPECT_EQ(*readObject("\x54"
                          "caf\xE9"),
              "café");
}

TEST(BinaryPropertyList, RefusesTypesThatAreNone) {
    for (const auto* object : {"\x01", "\x0F", "\x20\x01", "\x70", "\x90", "\xB0", "\xC0", "\xE0", "\xF0"}) {
        EXPECT_FALSE(readObject(object)) << static_cast<int>(*object);
    }
    EXPECT_FALSE(readObject("\0"s));
    EXPECT_FALSE(readObject("\x88" + std::string(9, '\0')));
}

TEST(BinaryPropertyList, KeysAreTextAndTheFirstOfTwoCounts) {
    Writer writer;
    const auto key = writer.addText("a");
    const auto one = writer.addText("1");
    const auto two = writer.addText("2");
    const auto number = writer.add("\x10\x01");
    const auto twice = writer.addDictionary({key, one, key, two});
    const auto numbered = writer.addDictionary({number, one});
    EXPECT_EQ(*propertyListTree(writer.written(twice)), json({{"a", "1"}}));
    EXPECT_EQ(propertyListText(writer.written(twice), "a"), "1");
    EXPECT_FALSE(isPropertyList(writer.written(numbered)));
}

TEST(BinaryPropertyList, TheFirstOfTwoValuesCountsEvenIfItIsNoText) {
    Writer writer;
    const auto key = writer.addText("a");
    const auto number = writer.add("\x10\x01");
    const auto list = writer.addDictionary({key, number, key, writer.addText("1")});
    EXPECT_EQ(propertyListText(writer.written(list), "a"), std::nullopt);
}

TEST(BinaryPropertyList, GivesAnObjectAsOftenAsItIsReferredTo) {
    Writer writer;
    const auto text = writer.add("\x61\x65\xE5");
    const auto inner = writer.addArray({text});
    EXPECT_EQ(*propertyListTree(writer.written(writer.addArray({inner, text, inner}))),
              json({{"日"}, "日", {"日"}}));
}

/// Time and memory that grew with what this says, and not with its bytes, would never suffice.
TEST(BinaryPropertyList, ALongTextThatIsNamedVeryOftenIsCopiedOnce) {
    Writer writer;
    const auto text = writer.addText(std::string(PropertyListLimits::askedText, 'x'));
    const auto label = writer.addText("Label");
    std::vector<std::size_t> entries;
    for (int i = 0; i < 30'000; ++i) entries.insert(entries.end(), {label, text, text, label});
    EXPECT_EQ(propertyListText(writer.written(writer.addDictionary(entries)), "Label")->size(),
              PropertyListLimits::askedText);
}

/// Arrays that name the next twice: few bytes, and twice as many ways down at each.
std::string doubling(std::size_t levels) {
    Writer writer;
    auto inner = writer.addArray({});
    for (std::size_t i = 0; i < levels; ++i) inner = writer.addArray({inner, inner});
    return writer.written(inner);
}

TEST(BinaryPropertyList, BoundsWhatAWalkWouldMeet) {
    EXPECT_TRUE(isPropertyList(doubling(16)));
    EXPECT_FALSE(isPropertyList(doubling(17)));
    EXPECT_FALSE(isPropertyList(doubling(30)));
    EXPECT_FALSE(isPropertyList(doubling(200)));
}

TEST(BinaryPropertyList, RefusesACycle) {
    Writer itself;
    itself.addArray({0});
    EXPECT_FALSE(isPropertyList(itself.written(0)));

    Writer each;
    each.addArray({1});
    const auto key = each.addArray({2});
    each.addDictionary({3, 0});
    each.addText("key");
    EXPECT_FALSE(isPropertyList(each.written(key)));
}

/// Each array names the one before it. `root` names them all, the shallow ones first, so that none is deep
/// when it is met.
std::string chain(std::size_t length, bool startsWithTheShallow) {
    Writer writer;
    std::vector<std::size_t> arrays{writer.addArray({})};
    while (arrays.size() < length) arrays.push_back(writer.addArray({arrays.back()}));
    return writer.written(startsWithTheShallow ? writer.addArray(arrays) : arrays.back());
}

TEST(BinaryPropertyList, NestingIsAtMost512Deep) {
    EXPECT_TRUE(isPropertyList(chain(512, false)));
    EXPECT_FALSE(isPropertyList(chain(513, false)));
    EXPECT_TRUE(isPropertyList(chain(511, true)));
    EXPECT_FALSE(isPropertyList(chain(512, true)));
    EXPECT_FALSE(isPropertyList(chain(100'000, false)));
}

TEST(BinaryPropertyList, RefusesMoreObjectsThan150000) {
    const auto list = [](std::size_t objects) {
        Writer writer;
        std::vector<std::size_t> elements;
        for (std::size_t i = 1; i < objects; ++i) elements.push_back(writer.add("\x09"));
        return writer.written(writer.addArray(elements));
    };
    EXPECT_TRUE(isPropertyList(list(150'000)));
    EXPECT_FALSE(isPropertyList(list(150'001)));
}

TEST(BinaryPropertyList, ObjectsDoNotOverlap) {
    Writer writer;
    std::vector<std::size_t> texts{writer.addText(std::string(10'000, 'x'))};
    for (int i = 0; i < 1000; ++i) texts.push_back(writer.addOffset(8));
    EXPECT_FALSE(isPropertyList(writer.written(writer.addArray(texts))));
}

TEST(BinaryPropertyList, RefusesOffsetsAndLengthsBeyondTheBytes) {
    for (const auto offset : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{9}, std::uint64_t{1} << 32U,
                              std::numeric_limits<std::uint64_t>::max()}) {
        Writer writer;
        writer.addOffset(offset);
        writer.add("\x09");
        EXPECT_FALSE(isPropertyList(writer.written(0))) << offset;
    }
    for (const auto count :
         {std::uint64_t{2}, std::uint64_t{1} << 61U, std::numeric_limits<std::uint64_t>::max()}) {
        for (const unsigned type : {0x4U, 0x5U, 0x6U, 0xAU, 0xDU}) {
            EXPECT_FALSE(readObject(Writer::head(type, count) + "x")) << type << " " << count;
        }
    }
    Writer dangling;
    dangling.addArray({1});
    EXPECT_FALSE(isPropertyList(dangling.written(0)));
    EXPECT_FALSE(isPropertyList(dangling.written(1)));
}

TEST(BinaryPropertyList, RefusesATrailerThatDoesNotFit) {
    Writer writer;
    writer.add("\x09");
    const auto good = writer.written(0);
    ASSERT_TRUE(isPropertyList(good));
    const auto changed = [&](std::size_t fromEnd, char value) {
        auto bytes = good;
        bytes[bytes.size() - fromEnd] = value;
        return isPropertyList(bytes);
    };
    EXPECT_FALSE(changed(26, 0)) << "size of an offset";
    EXPECT_FALSE(changed(26, 9));
    EXPECT_FALSE(changed(25, 0)) << "size of a reference";
    EXPECT_FALSE(changed(25, 9));
    EXPECT_FALSE(changed(17, 2)) << "number of objects";
    EXPECT_FALSE(changed(24, '\x7F'));
    EXPECT_FALSE(changed(9, 1)) << "top object";
    EXPECT_FALSE(changed(1, 0)) << "where the offsets are";
    EXPECT_FALSE(changed(8, '\xFF'));
    EXPECT_FALSE(isPropertyList(good + "x"));
    EXPECT_FALSE(isPropertyList("bplist00"));
}

}  // namespace
}  // namespace orvane::test
