#include "Text/Language.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/Fixtures/EnvironmentVariable.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Its parts, or that it is none.
std::string parts(std::string_view name) {
    const auto language = Language::named(name);
    if (!language) return "none";
    return language->language + "/" + language->script + "/" + language->region;
}

std::vector<Language> languages(const std::vector<std::string>& names) {
    std::vector<Language> result;
    for (const auto& name : names) result.push_back(Language::named(name).value());
    return result;
}

std::vector<std::string> closest(const std::vector<std::string>& wanted,
                                 const std::vector<std::string>& names) {
    return closestLocalizations(languages(wanted), names);
}

TEST(LanguageName, IsATagOrALocales) {
    EXPECT_EQ(parts("de"), "de//");
    EXPECT_EQ(parts("de_AT"), "de//AT");
    EXPECT_EQ(parts("DE-at"), "de//AT");
    EXPECT_EQ(parts("zh-Hant"), "zh/Hant/");
    EXPECT_EQ(parts("zh_HANT_tw"), "zh/Hant/TW");
    EXPECT_EQ(parts("es-419"), "es//419");
    EXPECT_EQ(parts("fil"), "fil//");
    EXPECT_EQ(parts("de_DE.UTF-8@euro"), "de//DE");
    EXPECT_EQ(parts("sr_RS.UTF-8@latin"), "sr/Latn/RS");
    EXPECT_EQ(parts("sr_Cyrl_RS@latin"), "sr/Cyrl/RS");
    EXPECT_EQ(parts("ca-ES-valencia"), "ca//ES");
    EXPECT_EQ(parts("ca-valencia"), "ca//");
}

TEST(LanguageName, MayBeTheOneThatOldSystemsKnow) {
    EXPECT_EQ(parts("English"), "en//");
    EXPECT_EQ(parts("German"), "de//");
    EXPECT_EQ(parts("french"), "fr//");
    EXPECT_EQ(parts("Norwegian"), "nb//");
    EXPECT_EQ(parts("no_NO"), "nb//NO");
    EXPECT_EQ(parts("iw"), "he//");
    EXPECT_EQ(parts("in"), "id//");
    EXPECT_EQ(parts("en_UK"), "en//GB");
}

TEST(LanguageName, NamesNothingElse) {
    for (const auto* name :
         {"", "C", "C.UTF-8", "POSIX", "Base", "base", "LocProvenance", "_", "-de", "d3", "Germanic", "../de",
          "\xFF\xFF", "@latin", ".UTF-8", "$(DEVELOPMENT_LANGUAGE)"}) {
        EXPECT_EQ(parts(name), "none") << name;
    }
    EXPECT_EQ(parts(std::string(1 << 20, 'a')), "none");
}

TEST(ClosestLocalizations, AreThoseOfTheRegionAndThenOfTheLanguage) {
    EXPECT_THAT(closest({"de_AT"}, {"de", "de_AT", "en", "fr"}), ElementsAre("de_AT", "de"));
    EXPECT_THAT(closest({"de_AT"}, {"en", "de"}), ElementsAre("de"));
    EXPECT_THAT(closest({"de_AT"}, {"de-CH", "de"}), ElementsAre("de"));
    EXPECT_THAT(closest({"pt_BR"}, {"pt_PT", "pt-BR", "pt"}), ElementsAre("pt-BR", "pt"));
    EXPECT_THAT(closest({"pt"}, {"pt_PT", "pt_BR"}), ElementsAre("pt_BR"));
    EXPECT_THAT(closest({"de"}, {"de_AT"}), ElementsAre("de_AT"));
}

TEST(ClosestLocalizations, KnowWhichRegionsAreAlike) {
    EXPECT_THAT(closest({"en_AU"}, {"en", "en_GB"}), ElementsAre("en_GB", "en"));
    EXPECT_THAT(closest({"es_MX"}, {"es", "es_419"}), ElementsAre("es_419", "es"));
    EXPECT_THAT(closest({"pt_AO"}, {"pt", "pt_PT"}), ElementsAre("pt_PT", "pt"));
    EXPECT_THAT(closest({"zh_MO"}, {"zh_TW", "zh_HK"}), ElementsAre("zh_HK"));
}

TEST(ClosestLocalizations, AreInTheScriptOfTheLanguage) {
    EXPECT_THAT(closest({"zh_TW"}, {"zh-Hans", "zh-Hant", "en"}), ElementsAre("zh-Hant"));
    EXPECT_THAT(closest({"zh-Hant"}, {"zh_CN", "zh_TW"}), ElementsAre("zh_TW"));
    EXPECT_THAT(closest({"zh_CN"}, {"zh_TW", "zh"}), ElementsAre("zh"));
    EXPECT_THAT(closest({"zh_TW"}, {"zh_CN", "zh-Hans"}), IsEmpty());
    EXPECT_THAT(closest({"sr@latin"}, {"sr", "sr-Latn"}), ElementsAre("sr-Latn"));
}

TEST(ClosestLocalizations, AreInTheFirstOfTheLanguagesThatThereIs) {
    EXPECT_THAT(closest({"fr", "de_AT", "en"}, {"en", "de"}), ElementsAre("de"));
    EXPECT_THAT(closest({"fr", "ja"}, {"en", "de"}), IsEmpty());
    EXPECT_THAT(closest({}, {"en", "de"}), IsEmpty());
    EXPECT_THAT(closest({"de"}, {}), IsEmpty());
    EXPECT_THAT(closest({"nn"}, {"nb", "da"}), IsEmpty()) << "a language that is like it is another one";
}

TEST(ClosestLocalizations, ATagGoesBeforeANameOfOld) {
    EXPECT_THAT(closest({"de_AT"}, {"German", "English", "de"}), ElementsAre("de", "German"));
    EXPECT_THAT(closest({"de_AT"}, {"German", "English"}), ElementsAre("German"));
    EXPECT_THAT(closest({"de"}, {"German", "Base", "lproj", ""}), ElementsAre("German"));
    EXPECT_THAT(closest({"he"}, {"iw"}), ElementsAre("iw"));
    EXPECT_THAT(closest({"no"}, {"nb"}), ElementsAre("nb"));
}

class EnvironmentLanguages : public testing::Test {
  protected:
    static std::string found() {
        std::string text;
        for (const auto& language : environmentLanguages()) {
            if (!text.empty()) text += " ";
            text += language.language + (language.region.empty() ? "" : "_" + language.region);
        }
        return text;
    }

    const EnvironmentVariable languageList{"LANGUAGE", std::nullopt};
    const EnvironmentVariable all{"LC_ALL", std::nullopt};
    const EnvironmentVariable messages{"LC_MESSAGES", std::nullopt};
    const EnvironmentVariable lang{"LANG", std::nullopt};
};

TEST_F(EnvironmentLanguages, AreThatOfTheFirstLocaleThatIsSet) {
    const EnvironmentVariable germanLang("LANG", "de_DE.UTF-8");
    EXPECT_EQ(found(), "de_DE");
    const EnvironmentVariable characters("LC_CTYPE", "ja_JP.UTF-8");
    EXPECT_EQ(found(), "de_DE");
    const EnvironmentVariable frenchMessages("LC_MESSAGES", "fr_CA");
    EXPECT_EQ(found(), "fr_CA");
    const EnvironmentVariable empty("LC_ALL", "");
    EXPECT_EQ(found(), "fr_CA");
    const EnvironmentVariable swedish("LC_ALL", "sv");
    EXPECT_EQ(found(), "sv");
}

TEST_F(EnvironmentLanguages, AreThoseOfTheListBeforeThatOfTheLocale) {
    const EnvironmentVariable list("LANGUAGE", "de_AT:de::xx.yy@z:fr");
    const EnvironmentVariable locale("LANG", "en_US.UTF-8");
    EXPECT_EQ(found(), "de_AT de xx fr");
    const EnvironmentVariable utf8("LC_ALL", "C.UTF-8");
    EXPECT_EQ(found(), "de_AT de xx fr");
    const EnvironmentVariable empty("LANGUAGE", "");
    EXPECT_EQ(found(), "en_US") << "of C.UTF-8";
}

TEST_F(EnvironmentLanguages, TheListDoesNotCountWhereTheLocaleIsC) {
    const EnvironmentVariable list("LANGUAGE", "de");
    EXPECT_EQ(found(), "en_US");
    for (const char* none : {"C", "POSIX"}) {
        const EnvironmentVariable locale("LC_ALL", none);
        EXPECT_EQ(found(), "en_US") << none;
    }
    const EnvironmentVariable locale("LANG", "fr_FR");
    EXPECT_EQ(found(), "de");
}

TEST_F(EnvironmentLanguages, NothingComesAfterC) {
    const EnvironmentVariable locale("LANG", "fr_FR");
    const EnvironmentVariable list("LANGUAGE", "de:C:ja");
    EXPECT_EQ(found(), "de");
}

TEST_F(EnvironmentLanguages, AreAmericanEnglishWhereNoneIsNamed) {
    const EnvironmentVariable locale("LANG", "fr_FR");
    for (const char* none : {":::", "C:de", "\xFF", "12:%s"}) {
        const EnvironmentVariable list("LANGUAGE", none);
        EXPECT_EQ(found(), "en_US") << none;
    }
}

}  // namespace
}  // namespace orvane::test
