#include "Text/LocalizedText.h"

#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>

#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/Fixtures/EnvironmentVariable.h"

namespace orvane::test {
namespace {

using namespace std::string_literals;

class LocalizedTextTest : public testing::Test {
  protected:
    bool contains(std::string_view text, std::string_view term) const {
        return english->localizedCaseInsensitiveContains(text, term);
    }

    std::unique_ptr<LocalizedText> english = makeLocalizedText("en_US");
};

class Contains : public LocalizedTextTest {};
class Compare : public LocalizedTextTest {};

TEST_F(Contains, NothingContainsAnEmptyTerm) {
    EXPECT_FALSE(contains("Safari", ""));
    EXPECT_FALSE(contains("", ""));
    EXPECT_FALSE(contains("É", ""));
}

TEST_F(Contains, IgnoresCase) {
    EXPECT_TRUE(contains("com.apple.Safari", "safari"));
    EXPECT_TRUE(contains("com.apple.safari", "SAFARI"));
    EXPECT_TRUE(contains("straße", "STRASSE"));
    EXPECT_TRUE(contains("ΣΊΣΥΦΟΣ", "σίσυφος"));
    EXPECT_FALSE(contains("Mail", "safari"));
}

TEST_F(Contains, ABlankIsALetterLikeAnyOther) {
    EXPECT_TRUE(contains("Disk Utility", " "));
    EXPECT_FALSE(contains("Safari", " "));
}

TEST_F(Contains, DoesNotLookInsideACharacter) {
    EXPECT_TRUE(contains("ﬁle", "fi"));
    EXPECT_FALSE(contains("ﬁle", "i"));
    EXPECT_FALSE(contains("ﬁle", "f"));
    EXPECT_FALSE(contains("cafe\u0301", "cafe"));
    EXPECT_FALSE(contains("한국어", "하"));
    EXPECT_TRUE(contains("🇩🇪🇫🇷", "🇫🇷"));
    EXPECT_FALSE(contains("🇩🇪🇫🇷", "🇪🇫"));
    EXPECT_FALSE(contains("1\uFE0F\u20E3", "1"));
}

TEST_F(Contains, AJoinedPictureIsOneCharacter) {
    EXPECT_FALSE(contains("👩‍👩‍👧", "👩"));
    EXPECT_FALSE(contains("👩‍👩‍👧", "👧"));
    EXPECT_FALSE(contains("👩‍👩‍👧", "👩‍👧"));
    EXPECT_FALSE(contains("👩‍👩‍👧‍👦", "👩‍👩‍👧"));
    EXPECT_FALSE(contains("👩‍👩‍👧", "\u200d"));
    EXPECT_TRUE(contains("👩‍👩‍👧", "👩‍👩‍👧"));
    EXPECT_TRUE(contains("Our 👩‍👩‍👧 Album", "👩‍👩‍👧 album"));
    EXPECT_TRUE(contains("👩‍👩‍👧👩", "👩"));
    EXPECT_FALSE(contains("👍🏽", "👍"));
    EXPECT_TRUE(contains("👍🏽", "👍🏽"));
}

TEST_F(Contains, ALineEndIsOneCharacter) {
    EXPECT_TRUE(contains("one\r\ntwo", "\r\n"));
    EXPECT_TRUE(contains("one\r\ntwo", "one\r\nTWO"));
    EXPECT_TRUE(contains("one\r\ntwo", "two"));
    EXPECT_FALSE(contains("one\r\ntwo", "\n"));
    EXPECT_FALSE(contains("one\r\ntwo", "\r"));
    EXPECT_TRUE(contains("one\n\rtwo", "\r"));
}

TEST_F(Contains, ComposedAndDecomposedAreTheSame) {
    EXPECT_TRUE(contains("CAFÉ", "cafe\u0301"));
    EXPECT_TRUE(contains("cafe\u0301 bar", "é BAR"));
    EXPECT_TRUE(contains("q\u0307\u0323", "q\u0323\u0307"));
}

TEST_F(Contains, FindsATermThatIsNotTextByItsBytes) {
    EXPECT_TRUE(contains("a\xFF\xFE z", "\xFF\xFE"));
    EXPECT_TRUE(contains("é", "\xA9"));
    EXPECT_FALSE(contains("A\xFF", "a\xFF"));
}

TEST_F(Contains, FindsTextBesideBytesThatAreNone) {
    EXPECT_TRUE(contains("\xFF\xC3Safari\xE2\x82", "safari"));
    EXPECT_TRUE(contains("\xFFÉmile\xFF", "émile"));
}

TEST_F(Contains, AReplacementCharacterIsNotABadByte) {
    EXPECT_TRUE(contains("a\uFFFDz", "\uFFFD"));
    EXPECT_FALSE(contains("a\xFFz", "\uFFFD"));
    EXPECT_FALSE(contains("a\xFFz", "a\uFFFDz"));
}

TEST_F(Contains, ANulIsALetterLikeAnyOther) {
    EXPECT_TRUE(contains("a\0b"s, "A\0B"s));
    EXPECT_TRUE(contains("é\0b"s, "\0B"s));
    EXPECT_FALSE(contains("ab", "a\0b"s));
}

TEST_F(Contains, FollowsTheLanguagesOwnLetters) {
    const auto turkish = makeLocalizedText("tr_TR");
    EXPECT_TRUE(turkish->localizedCaseInsensitiveContains("IŞIK", "ışık"));
    EXPECT_FALSE(turkish->localizedCaseInsensitiveContains("INFO", "info"));
    EXPECT_TRUE(turkish->localizedCaseInsensitiveContains("İZMİR", "izmir"));
    EXPECT_TRUE(turkish->localizedCaseInsensitiveContains("I\u0307ZMIR", "izmır"));
}

// A search that starts over at every letter would not end within the life of a test.
TEST_F(Contains, TakesNoLongerForATermThatAlmostMatches) {
    std::string text(std::size_t{1} << 20, 'a');
    const std::string term = text.substr(text.size() / 2) + "b";
    EXPECT_FALSE(contains(text, term));
    EXPECT_FALSE(contains(text, term + "\xFF"));
    text += "é";
    EXPECT_FALSE(contains(text, term));
}

TEST_F(Compare, IgnoresCaseButNotAccents) {
    EXPECT_EQ(english->localizedCaseInsensitiveCompare("alpha", "ALPHA"), 0);
    EXPECT_EQ(english->localizedCaseInsensitiveCompare("Émile", "émile"), 0);
    EXPECT_LT(english->localizedCaseInsensitiveCompare("emile", "Émile"), 0);
    EXPECT_GT(english->localizedCaseInsensitiveCompare("zeta", "Alpha"), 0);
    EXPECT_LT(english->localizedCaseInsensitiveCompare("", "a"), 0);
}

TEST_F(Compare, FollowsTheLanguagesOwnOrder) {
    const auto swedish = makeLocalizedText("sv_SE.UTF-8");
    const auto german = makeLocalizedText("de_DE.UTF-8@euro");
    EXPECT_GT(swedish->localizedCaseInsensitiveCompare("Öl", "zebra"), 0);
    EXPECT_LT(german->localizedCaseInsensitiveCompare("Öl", "zebra"), 0);
}

TEST_F(Compare, TakesBytesThatAreNoText) {
    EXPECT_EQ(english->localizedCaseInsensitiveCompare("a\xFF", "A\xFF"), 0);
    EXPECT_NE(english->localizedCaseInsensitiveCompare("a\xFF", "b\xFF"), 0);
}

int orderOfUmlautInEnvironment() {
    return makeLocalizedText()->localizedCaseInsensitiveCompare("ö", "z");
}

TEST(TextLocale, IsTheFirstThatTheEnvironmentSets) {
    const EnvironmentVariable lang("LANG", "sv_SE.UTF-8");
    const EnvironmentVariable characters("LC_CTYPE", "");
    const EnvironmentVariable noOrder("LC_COLLATE", std::nullopt);
    const EnvironmentVariable noAll("LC_ALL", std::nullopt);
    EXPECT_GT(orderOfUmlautInEnvironment(), 0);
    const EnvironmentVariable order("LC_COLLATE", "de_DE.UTF-8");
    EXPECT_LT(orderOfUmlautInEnvironment(), 0);
    const EnvironmentVariable all("LC_ALL", "sv_SE");
    EXPECT_GT(orderOfUmlautInEnvironment(), 0);
}

TEST(TextLocale, IsEnglishWhereTheEnvironmentHasNoLanguage) {
    const EnvironmentVariable lang("LANG", "sv_SE.UTF-8");
    for (const char* none : {"C", "C.UTF-8", "POSIX"}) {
        const EnvironmentVariable all("LC_ALL", none);
        EXPECT_LT(orderOfUmlautInEnvironment(), 0) << none;
    }
}

TEST(TextLocale, IsEnglishWhereTheEnvironmentMakesNoSense) {
    const std::string endless(100'000, 'x');
    for (const auto& nonsense : {endless, "sv_SE@collation="s, "sv@x=@=;;="s, "\xff"s, "@"s, "../.."s}) {
        const EnvironmentVariable all("LC_ALL", nonsense);
        EXPECT_LT(orderOfUmlautInEnvironment(), 0) << nonsense.substr(0, 40);
    }
}

/// Random text from pieces that are hard to cut: marks, joiners, flags, ligatures, line ends.
class RandomText {
  public:
    explicit RandomText(unsigned seed) : generator_(seed) {}

    std::string operator()(std::size_t maximumPieces) {
        static const std::vector<std::string> pieces = {
            "a",  "A",  "s", "S", "f", "i",      "I",      "1",      " ",      "\r",     "\n", "\r\n", "é",
            "É",  "ß",  "ﬁ", "ﬂ", "σ", "ς",      "Σ",      "İ",      "ı",      "中",     "語", "한",   "ᄒ",
            "ᅡ", "ᆫ", "👩", "🇩", "🇪", "\u0301", "\u0323", "\u200d", "\uFE0F", "\u20E3", "\0"s};
        std::string text;
        for (auto left = generator_() % (maximumPieces + 1); left > 0; --left) {
            text += pieces[generator_() % pieces.size()];
        }
        return text;
    }

  private:
    std::mt19937 generator_;
};

std::vector<icu::UnicodeString> plainlyFoldedCharacters(const std::string& bytes) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* decomposition = icu::Normalizer2::getNFDInstance(status);
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getUS(), status));
    const auto source = icu::UnicodeString::fromUTF8(bytes);
    breaks->setText(source);
    std::vector<icu::UnicodeString> characters;
    std::int32_t start = breaks->first();
    for (auto end = breaks->next(); end != icu::BreakIterator::DONE; start = end, end = breaks->next()) {
        auto folded = decomposition->normalize(source.tempSubStringBetween(start, end), status).foldCase();
        characters.push_back(decomposition->normalize(folded, status));
    }
    return characters;
}

/// The same rule, said as plainly as can be: cut, fold, and compare at every character.
bool plainlyContains(const std::string& text, const std::string& term) {
    icu::UnicodeString wanted;
    for (const auto& character : plainlyFoldedCharacters(term)) wanted += character;
    const auto characters = plainlyFoldedCharacters(text);
    for (std::size_t first = 0; first < characters.size() && !wanted.isEmpty(); ++first) {
        icu::UnicodeString run;
        for (std::size_t i = first; i < characters.size() && run.length() < wanted.length(); ++i) {
            run += characters[i];
            if (run == wanted) return true;
        }
    }
    return false;
}

TEST_F(Contains, AgreesWithTheRuleSaidPlainly) {
    RandomText random(1);
    int found = 0;
    for (int round = 0; round < 10'000; ++round) {
        const auto text = random(8);
        const auto term = random(2);
        const bool expected = plainlyContains(text, term);
        ASSERT_EQ(contains(text, term), expected)
            << testing::PrintToString(text) << testing::PrintToString(term);
        if (expected) ++found;
    }
    EXPECT_GT(found, 300) << "too few terms are found to prove anything";
}

TEST_F(Compare, AgreesWithTheCollatorOverFoldedText) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getUS(), status));
    collator->setStrength(icu::Collator::SECONDARY);
    RandomText random(2);
    for (int round = 0; round < 10'000; ++round) {
        const auto a = random(4);
        const auto b = random(4);
        const auto expected = collator->compare(icu::UnicodeString::fromUTF8(a).foldCase(),
                                                icu::UnicodeString::fromUTF8(b).foldCase(), status);
        ASSERT_EQ(english->localizedCaseInsensitiveCompare(a, b), expected)
            << testing::PrintToString(a) << testing::PrintToString(b);
    }
}

TEST_F(LocalizedTextTest, AnswersManyThreadsAtOnce) {
    RandomText random(3);
    std::vector<std::string> texts;
    texts.reserve(60);
    for (int i = 0; i < 60; ++i) texts.push_back(random(8));
    const auto answers = [&] {
        std::vector<int> result;
        for (const auto& a : texts) {
            for (const auto& b : texts) {
                result.push_back(english->localizedCaseInsensitiveCompare(a, b));
                result.push_back(contains(a, b) ? 1 : 0);
            }
        }
        return result;
    };
    const auto expected = answers();
    std::vector<std::vector<int>> found(4);
    std::vector<std::thread> threads;
    threads.reserve(found.size());
    for (auto& result : found) threads.emplace_back([&] { result = answers(); });
    for (auto& thread : threads) thread.join();
    for (const auto& result : found) EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace orvane::test
