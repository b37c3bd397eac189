#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/BinaryPropertyListWriter.h"
#include "tests/Fixtures/FailingFileManager.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

/// An application with a name in its information, for people of several languages.
class LocalizedBundle : public testing::Test {
  protected:
    LocalizedBundle() { inform(""); }

    /// What its information says beside its name and its identifier.
    void inform(const std::string& more) const {
        mac.makeFile("/Foo.app/Contents/Info.plist",
                     "{ CFBundleName = Plain; CFBundleIdentifier = org.example.foo; " + more + " }");
    }
    /// A file of its resources.
    void resource(const std::string& path, const std::string& contents) const {
        mac.makeFile("/Foo.app/Contents/Resources/" + path, contents);
    }
    /// The list of a localization, which gives the bundle a name.
    void localization(const std::string& language, const std::string& name) const {
        resource(language + ".lproj/InfoPlist.strings", "CFBundleName = \"" + name + "\";");
    }

    Bundle bundle(const std::vector<std::string>& languages, const std::string& path = "/Foo.app") const {
        std::vector<Language> wanted;
        for (const auto& name : languages) wanted.push_back(Language::named(name).value());
        return makeBundleLoader(mac.files(), wanted)->bundle(FileURL::fromPath(path, true)).value();
    }
    std::string name(const std::vector<std::string>& languages) const {
        return bundle(languages).name.value_or("no name");
    }

    /// What a loader for these languages asks of the disk to open it.
    std::string calls(const std::vector<Language>& languages) const {
        FailingFileManager counting(mac.files());
        makeBundleLoader(counting, languages)->bundle(FileURL::fromPath("/Foo.app", true));
        const auto all = counting.calls();
        return std::to_string(std::count(all.begin(), all.end(), "contentsOfDirectory")) + " listings, " +
               std::to_string(std::count(all.begin(), all.end(), "contents")) + " readings";
    }

    TestVolume mac;
};

TEST_F(LocalizedBundle, SaysWhatItSaysInTheLanguageAndTheRestAsItIs) {
    inform("CFBundleVersion = 7; CFBundleShortVersionString = \"1.0\"; NSHumanReadableCopyright = c;");
    resource("de.lproj/InfoPlist.strings",
             "CFBundleDisplayName = Anzeige; CFBundleName = Name; CFBundleShortVersionString = \"1,0\";");
    const auto german = bundle({"de"});
    EXPECT_EQ(german.displayName, "Anzeige");
    EXPECT_EQ(german.name, "Name");
    EXPECT_EQ(german.shortVersion, "1,0");
    EXPECT_EQ(german.version, "7");
    EXPECT_EQ(german.copyright, "c");
    EXPECT_EQ(bundle({"fr"}).displayName, std::nullopt);
    EXPECT_EQ(bundle({"fr"}).name, "Plain");
}

TEST_F(LocalizedBundle, IsKnownByOneIdentifierInEveryLanguage) {
    const std::string foreign = "CFBundleIdentifier = org.example.other; CFBundleName = Name;";
    resource("de.lproj/InfoPlist.strings", foreign);
    resource("InfoPlist.loctable", "{ fr = { " + foreign + " }; }");
    EXPECT_EQ(bundle({"de"}).identifier, "org.example.foo");
    EXPECT_EQ(bundle({"fr"}).identifier, "org.example.foo");
    resource("InfoPlist.strings", foreign);
    EXPECT_EQ(bundle({"de"}).identifier, "org.example.foo");
    EXPECT_EQ(name({"de"}), "Name");
    mac.makeFile("/Foo.app/Contents/Info.plist", "{}");
    EXPECT_EQ(bundle({"de"}).identifier, std::nullopt);
}

TEST_F(LocalizedBundle, TakesTheFirstOfTheLanguagesThatItHas) {
    localization("en", "English");
    localization("de", "Deutsch");
    EXPECT_EQ(name({"fr", "de_AT", "en"}), "Deutsch");
    EXPECT_EQ(name({"en", "de"}), "English");
    localization("de_AT", "Österreichisch");
    EXPECT_EQ(name({"de_AT"}), "Österreichisch");
    EXPECT_EQ(name({"de_CH"}), "Deutsch");
}

TEST_F(LocalizedBundle, KnowsScriptsAndRegions) {
    localization("zh-Hant", "繁體");
    localization("zh_CN", "简体");
    localization("pt_BR", "Brasil");
    localization("pt-PT", "Portugal");
    EXPECT_EQ(name({"zh_TW"}), "繁體");
    EXPECT_EQ(name({"zh-Hans"}), "简体");
    EXPECT_EQ(name({"pt_BR"}), "Brasil");
    EXPECT_EQ(name({"pt_PT"}), "Portugal");
}

TEST_F(LocalizedBundle, KnowsTheNamesThatLanguagesHadOfOld) {
    localization("English", "Old");
    localization("German", "Alt");
    EXPECT_EQ(name({"de_DE"}), "Alt");
    EXPECT_EQ(name({"en"}), "Old");
}

TEST_F(LocalizedBundle, WithNoneOfTheLanguagesIsInThatOfItsDevelopmentRegion) {
    inform("CFBundleDevelopmentRegion = Japanese;");
    localization("en", "English");
    localization("ja", "日本語");
    localization("Base", "Base");
    EXPECT_EQ(name({"fr"}), "日本語");
    EXPECT_EQ(name({}), "日本語");
    inform("CFBundleDevelopmentRegion = de;");
    EXPECT_EQ(name({"fr"}), "Base");
}

TEST_F(LocalizedBundle, IsDevelopedInEnglishWhereItDoesNotSay) {
    localization("en", "English");
    localization("ja", "日本語");
    localization("Base", "Base");
    EXPECT_EQ(name({"fr"}), "English");
    inform("CFBundleDevelopmentRegion = \"$(DEVELOPMENT_LANGUAGE)\";");
    EXPECT_EQ(name({"fr"}), "English");
}

TEST_F(LocalizedBundle, ItsBaseComesLast) {
    localization("Base", "Base");
    localization("de", "Deutsch");
    EXPECT_EQ(name({"fr"}), "Base");
    EXPECT_EQ(name({"de"}), "Deutsch");
    EXPECT_EQ(name({}), "Base");
}

TEST_F(LocalizedBundle, ALocalizationWithoutNamesLeavesThemToTheNext) {
    resource("de_AT.lproj/Localizable.strings", "x");
    resource("de.lproj/Localizable.strings", "x");
    localization("en", "English");
    EXPECT_EQ(name({"de_AT", "en"}), "English") << "that of the development region";
    localization("German", "Deutsch");
    EXPECT_EQ(name({"de_AT", "en"}), "Deutsch");
    localization("fr", "Français");
    inform("CFBundleDevelopmentRegion = ja;");
    resource("ja.lproj/Localizable.strings", "x");
    EXPECT_EQ(name({"it", "fr"}), "Français");
}

TEST_F(LocalizedBundle, TheFirstListThatIsThereCounts) {
    localization("en", "English");
    resource("de.lproj/InfoPlist.strings", "CFBundleName = \"not ended");
    EXPECT_EQ(name({"de"}), "Plain");
    resource("de.lproj/InfoPlist.strings", "");
    EXPECT_EQ(name({"de"}), "Plain");
    resource("de.lproj/InfoPlist.strings", "Other = x;");
    EXPECT_EQ(name({"de"}), "Plain");
}

TEST_F(LocalizedBundle, AnEmptyTextAndOneOfAnotherTypeCount) {
    resource("de.lproj/InfoPlist.strings", "CFBundleDisplayName = \"\"; CFBundleName = (a);");
    EXPECT_EQ(bundle({"de"}).displayName, "");
    EXPECT_EQ(bundle({"de"}).name, std::nullopt);
}

TEST_F(LocalizedBundle, AListForAllLanguagesGoesBeforeThoseOfOne) {
    localization("de", "Deutsch");
    resource("InfoPlist.loctable", "{ de = { CFBundleName = Tabelle; }; }");
    resource("InfoPlist.strings", "CFBundleName = \"For all\";");
    EXPECT_EQ(name({"de"}), "For all");
}

TEST_F(LocalizedBundle, ATableHasADictionaryForEachLanguage) {
    resource("InfoPlist.loctable",
             "{ LocProvenance = { de = 1; }; de = { CFBundleName = Tabelle; }; "
             "pt_BR = { CFBundleName = Tabela; }; en = { CFBundleDisplayName = Table; }; fr = none; }");
    EXPECT_EQ(name({"de_AT"}), "Tabelle");
    EXPECT_EQ(name({"pt"}), "Tabela");
    EXPECT_EQ(name({"fr"}), "Plain");
    EXPECT_EQ(bundle({"fr"}).displayName, "Table") << "that of the development region";
    resource("de.lproj/Localizable.strings", "x");
    EXPECT_EQ(name({"de"}), "Tabelle");
    localization("de", "Deutsch");
    EXPECT_EQ(name({"de"}), "Deutsch");
    resource("InfoPlist.loctable", "damaged {");
    EXPECT_EQ(name({"pt"}), "Plain");
}

TEST_F(LocalizedBundle, ReadsListsOfEveryFormat) {
    const auto named = [&](const std::string& list) {
        resource("de.lproj/InfoPlist.strings", list);
        return name({"de"});
    };
    EXPECT_EQ(named("<plist><dict><key>CFBundleName</key><string>XML</string></dict></plist>"), "XML");
    EXPECT_EQ(named("\xEF\xBB\xBF/* c */ \"CFBundleName\" = \"Grün\";\n"), "Grün");
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char letter : std::string_view("CFBundleName = \"A \\U00e9\";")) {
        little += {letter, '\0'};
        big += {'\0', letter};
    }
    EXPECT_EQ(named(little), "A é");
    EXPECT_EQ(named(big), "A é");
    BinaryPropertyListWriter binary;
    const auto list = binary.addDictionary({binary.addText("CFBundleName"), binary.addText("Binary")});
    EXPECT_EQ(named(binary.written(list)), "Binary");
}

TEST_F(LocalizedBundle, LooksWhereTheBundleKeepsItsResources) {
    const std::string strings = "CFBundleName = Localized;";
    mac.makeFile("/Flat.app/Info.plist", "{}");
    mac.makeFile("/Flat.app/en.lproj/InfoPlist.strings", strings);
    mac.makeFile("/Old.app/Support Files/Info.plist", "{}");
    mac.makeFile("/Old.app/Support Files/Resources/en.lproj/InfoPlist.strings", strings);
    mac.makeFile("/Resources.app/Resources/Info.plist", "{}");
    mac.makeFile("/Resources.app/Resources/en.lproj/InfoPlist.strings", strings);
    mac.makeFile("/Elsewhere.app/Contents/Info.plist", "{}");
    mac.makeFile("/Elsewhere.app/Contents/en.lproj/InfoPlist.strings", strings);
    mac.makeFile("/Uninformed.app/Contents/Resources/en.lproj/InfoPlist.strings", strings);
    for (const auto* path : {"/Flat.app", "/Old.app", "/Resources.app", "/Uninformed.app"}) {
        EXPECT_EQ(bundle({"en"}, path).name, "Localized") << path;
    }
    EXPECT_EQ(bundle({"en"}, "/Elsewhere.app").name, std::nullopt);
}

TEST_F(LocalizedBundle, FollowsLinksInsideOfTheVolumeAndNoneOutOfIt) {
    mac.makeFile("/Shared/InfoPlist.strings", "CFBundleName = Shared;");
    mac.makeLink("/Foo.app/Contents/Resources/de.lproj", "/Shared");
    EXPECT_EQ(name({"de"}), "Shared");
    mac.makeOutsideFile("InfoPlist.strings", "CFBundleName = Secret;");
    mac.makeLink("/Foo.app/Contents/Resources/fr.lproj", mac.outside());
    mac.makeDirectory("/Foo.app/Contents/Resources/it.lproj");
    mac.makeLink("/Foo.app/Contents/Resources/it.lproj/InfoPlist.strings", mac.outside("InfoPlist.strings"));
    EXPECT_EQ(name({"fr"}), "Plain");
    EXPECT_EQ(name({"it"}), "Plain");
    mac.makeLink("/Bar.app/Contents/Resources", mac.outside());
    EXPECT_EQ(bundle({"fr"}, "/Bar.app").name, std::nullopt);
}

TEST_F(LocalizedBundle, ReadsRegularFilesOfReasonableSizeOnly) {
    mac.makeFIFO("/Foo.app/Contents/Resources/de.lproj/InfoPlist.strings");
    mac.makeDirectory("/Foo.app/Contents/Resources/fr.lproj/InfoPlist.strings");
    mac.makeLink("/Foo.app/Contents/Resources/it.lproj/InfoPlist.strings", "InfoPlist.strings");
    mac.makeFIFO("/Foo.app/Contents/Resources/sv.lproj");
    localization("ja", "Large\";" + std::string(20U << 20U, ' ') + "\"");
    for (const auto* language : {"de", "fr", "it", "sv", "ja"}) {
        EXPECT_EQ(name({language}), "Plain") << language;
    }
    mac.makeFIFO("/FIFO.app/Contents/Resources/InfoPlist.strings");
    EXPECT_EQ(bundle({"de"}, "/FIFO.app").name, std::nullopt);
    mac.makeFIFO("/Table.app/Contents/Resources/InfoPlist.loctable");
    EXPECT_EQ(bundle({"de"}, "/Table.app").name, std::nullopt);
    mac.makeFIFO("/Resources.app/Contents/Resources");
    EXPECT_EQ(bundle({"de"}, "/Resources.app").name, std::nullopt);
}

TEST_F(LocalizedBundle, WhatMayNotBeReadLeavesItAsItIs) {
    localization("de", "Deutsch");
    localization("fr", "Français");
    localization("en", "English");
    mac.giveEverythingToUnprivilegedUser();
    const auto resources = mac.machinePath("/Foo.app/Contents/Resources");
    ::chmod((resources + "/de.lproj/InfoPlist.strings").c_str(), 0000);
    ::chmod((resources + "/fr.lproj").c_str(), 0000);
    asUnprivilegedUser([&] {
        EXPECT_EQ(name({"de"}), "Plain");
        EXPECT_EQ(name({"fr"}), "Plain");
        EXPECT_EQ(name({"en"}), "English");
        ::chmod(resources.c_str(), 0000);
        EXPECT_EQ(name({"en"}), "Plain");
        ::chmod(resources.c_str(), 0700);
    });
}

TEST_F(LocalizedBundle, NamesOfNoLanguageLeadNowhere) {
    for (const auto* language : {"", "..", "C", "\xFF", "de\ndex", "LocProvenance"}) {
        localization(language, "Nonsense");
    }
    localization(std::string(200, 'd'), "Nonsense");
    inform("CFBundleDevelopmentRegion = \"../../..\";");
    EXPECT_EQ(name({"fr", "de"}), "Plain");
    inform("CFBundleDevelopmentRegion = \"\\U0000\";");
    EXPECT_EQ(name({"fr", "de"}), "Plain");
}

/// Thousands of bundles are opened in a row: what each costs is asked of the disk again and again.
TEST_F(LocalizedBundle, ItsResourcesAreListedOnceAndAFileIsOnlyOpenedWhereItMayBe) {
    const std::vector<Language> many{{"fr", "", ""}, {"ja", "", ""}, {"de", "", "AT"}, {"en", "", ""}};
    EXPECT_EQ(calls(many), "1 listings, 1 readings") << "its information";
    localization("de", "Deutsch");
    localization("it", "Italiano");
    localization("en", "English");
    EXPECT_EQ(calls(many), "1 listings, 2 readings");
    resource("de_AT.lproj/Localizable.strings", "x");
    EXPECT_EQ(calls(many), "1 listings, 3 readings");
}

TEST_F(LocalizedBundle, FiveHundredLocalizationsAreAllThatCount) {
    std::string table;
    for (int number = 0; number < 600; ++number) {
        const auto language = "en-variant" + std::to_string(number);
        mac.makeDirectory("/Foo.app/Contents/Resources/" + language + ".lproj");
        table += language + " = { CFBundleName = Many; };";
    }
    EXPECT_EQ(calls({{"en", "", ""}}), "1 listings, 501 readings");
    resource("InfoPlist.loctable", table);
    EXPECT_EQ(name({"en"}), "Many");
    resource("InfoPlist.loctable", "a = {};" + table + "fr = { CFBundleName = French; };");
    EXPECT_EQ(name({"fr"}), "Many") << "what comes after them does not";
}

}  // namespace
}  // namespace orvane::test
