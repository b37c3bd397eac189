#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "Formats/PropertyList.h"
#include "tests/Fixtures/BinaryPropertyListWriter.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReplacedTexts : public testing::Test {
  protected:
    ReplacedTexts() : one("old one"), other("old other") {}

    /// Both, as one line.
    std::string texts() const { return one.value_or("none") + ", " + other.value_or("none"); }
    std::string replaced(std::string_view list) {
        one = "old one";
        other = "old other";
        replacePropertyListTexts(list, asked());
        return texts();
    }
    std::string replacedIn(std::string_view dictionary, std::string_view list) {
        one = "old one";
        other = "old other";
        replacePropertyListTexts(list, dictionary, asked());
        return texts();
    }
    std::array<AskedText, 2> asked() { return {{{"one", one}, {"other", other}}}; }

    std::optional<std::string> one;
    std::optional<std::string> other;
};

TEST_F(ReplacedTexts, StayWhereTheListHasNothing) {
    EXPECT_EQ(replaced("one = new;"), "new, old other");
    EXPECT_EQ(replaced("other = \"\"; one = new;"), "new, ");
    EXPECT_EQ(replaced("{}"), "old one, old other");
    EXPECT_EQ(replaced("(one)"), "old one, old other");
    EXPECT_EQ(replaced("{ a = { one = new; }; }"), "old one, old other");
}

TEST_F(ReplacedTexts, AreGoneWhereTheListHasAnotherType) {
    EXPECT_EQ(replaced("one = (new);"), "none, old other");
    EXPECT_EQ(replaced("<plist><dict><key>one</key><integer>1</integer></dict></plist>"), "none, old other");
}

TEST_F(ReplacedTexts, StayWhereTheListIsNoneAsAWhole) {
    EXPECT_EQ(replaced("one = new; other = \"new"), "old one, old other");
    EXPECT_EQ(replaced(""), "old one, old other");
}

TEST_F(ReplacedTexts, OfADictionaryComeFromItAlone) {
    constexpr std::string_view list = "{ one = outer; de = { one = eins; }; fr = { other = autre; }; }";
    EXPECT_EQ(replacedIn("de", list), "eins, old other");
    EXPECT_EQ(replacedIn("fr", list), "old one, autre");
    EXPECT_EQ(replacedIn("en", list), "old one, old other");
    EXPECT_EQ(replacedIn("de", "de = ({ one = eins; });"), "old one, old other");
    EXPECT_EQ(replacedIn("de", "de = one; one = eins;"), "old one, old other");
    EXPECT_EQ(replacedIn("de", "de = { de = { one = eins; }; };"), "old one, old other");
    EXPECT_EQ(replacedIn("de", "({ de = { one = eins; }; })"), "old one, old other");
}

TEST_F(ReplacedTexts, OfTwoDictionariesOfAKeyComeFromTheOneThatCounts) {
    EXPECT_EQ(replacedIn("de", "de = { one = 1; }; de = { other = 2; };"), "old one, 2");
    EXPECT_EQ(replacedIn("de", "de = { one = 1; }; de = none;"), "old one, old other");
    // In binary the first does.
    BinaryPropertyListWriter list;
    const auto key = list.addText("de");
    const auto first = list.addDictionary({list.addText("one"), list.addText("1")});
    const auto second = list.addDictionary({list.addText("other"), list.addText("2")});
    EXPECT_EQ(replacedIn("de", list.written(list.addDictionary({key, first, key, second}))), "1, old other");
}

TEST(PropertyListDictionaries, AreThoseOfTheOutermost) {
    EXPECT_THAT(
        propertyListDictionaries("{ de = { x = {}; }; fr = {}; text = a; array = ({}); de = {}; }", 64, 10),
        ElementsAre("de", "fr"));
    EXPECT_THAT(propertyListDictionaries("({})", 64, 10), IsEmpty());
    EXPECT_THAT(propertyListDictionaries("{ de = {}; \"", 64, 10), IsEmpty());
}

TEST(PropertyListDictionaries, AreAsManyAndAsLongAsIsAskedFor) {
    EXPECT_THAT(propertyListDictionaries("de = {}; fr = {}; it = {};", 64, 2), ElementsAre("de", "fr"));
    EXPECT_THAT(propertyListDictionaries("de = {}; fra = {};", 2, 10), ElementsAre("de"));
    EXPECT_THAT(propertyListDictionaries("de = a; fra = {};", 2, 10), IsEmpty());
}

}  // namespace
}  // namespace orvane::test
