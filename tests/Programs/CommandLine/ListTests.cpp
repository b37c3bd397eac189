#include <algorithm>
#include <filesystem>
#include <map>

#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

class ListCommand : public CommandLineTest {};

std::vector<std::string> idsOf(const json& applications) {
    std::vector<std::string> ids;
    for (const auto& application : applications) ids.push_back(application.at("id"));
    return ids;
}

TEST_F(ListCommand, ShowsEveryApplicationSortedByName) {
    makeApplication("/Applications/zeta.app", "com.example.zeta");
    makeApplication("/System/Applications/Alpha.app", "com.example.alpha");
    makeApplication("/Users/sample/Applications/Mine.app", "com.example.mine");
    EXPECT_EQ(idsOf(document({"list", "--json"})),
              (std::vector<std::string>{"/System/Applications/Alpha.app",
                                        "/Users/sample/Applications/Mine.app", "/Applications/zeta.app"}));
}

TEST_F(ListCommand, WritesTheCatalogsMembersAndTheIdentity) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    const auto application = document({"list", "--json"}).at(0);
    EXPECT_EQ(application.at("url"), "file:///Applications/Foo.app/");
    EXPECT_EQ(application.at("id"), "/Applications/Foo.app");
    EXPECT_EQ(application.at("name"), "Foo");
    EXPECT_EQ(application.at("bundleIdentifier"), "com.example.foo");
    EXPECT_EQ(application.at("version"), "1.0");
    EXPECT_GT(application.at("size").get<int>(), 0);
    EXPECT_TRUE(application.at("modifiedAt").is_number());
    EXPECT_EQ(application.at("isSystemApplication"), false);
    EXPECT_EQ(application.at("isInstalled"), true);
    EXPECT_EQ(application.size(), 9);
}

TEST_F(ListCommand, SavesTheCatalogOnTheVolumeInTheMacsOwnPaths) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    document({"list", "--json"});
    const auto catalog =
        readFile(volume.path("Users/sample/Library/Application Support/Orvane/applications.json"));
    EXPECT_NE(catalog.find(R"("url":"file:\/\/\/Applications\/Foo.app\/")"), std::string::npos) << catalog;
}

TEST_F(ListCommand, ShowsTheSavedListWithoutLookingForNewApplications) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    document({"list", "--json"});
    makeApplication("/Applications/New.app", "com.example.new");
    EXPECT_EQ(document({"list", "--json"}).size(), 1);
    EXPECT_EQ(document({"list", "--rescan", "--json"}).size(), 2);
}

TEST_F(ListCommand, KeepsAnApplicationThatHasVanishedSinceItWasSaved) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    makeApplication("/Applications/Gone.app", "com.example.gone");
    document({"list", "--json"});
    std::filesystem::remove_all(volume.path("Applications/Gone.app"));
    for (const auto& arguments :
         {std::vector<std::string>{"list", "--json"}, {"list", "--rescan", "--json"}}) {
        const auto applications = document(arguments);
        ASSERT_EQ(applications.size(), 2);
        EXPECT_EQ(applications.at(1).at("id"), "/Applications/Gone.app");
        EXPECT_EQ(applications.at(1).at("isInstalled"), false);
    }
    EXPECT_NE(run({"list"}).output.find("Not installed"), std::string::npos);
}

TEST_F(ListCommand, FiltersByNameAndIdentifierWithoutRegardToCase) {
    makeApplication("/Applications/Safari.app", "com.example.browser");
    makeApplication("/Applications/Other.app", "com.example.safari.helper");
    makeApplication("/Applications/Third.app", "com.example.third");
    EXPECT_EQ(idsOf(document({"list", "--search", "SAFARI", "--json"})),
              (std::vector<std::string>{"/Applications/Other.app", "/Applications/Safari.app"}));
    EXPECT_EQ(document({"list", "--search", " ", "--json"}).size(), 0);
    EXPECT_EQ(document({"list", "--search", "", "--json"}).size(), 3);
}

TEST_F(ListCommand, CallsApplicationsAsTheyAreCalledInTheLanguagesOfTheEnvironment) {
    const auto path = makeApplication("/Applications/Foo.app", "com.example.foo");
    for (const auto& [language, name] : std::map<std::string, std::string>{
             {"en", "Flower"}, {"German", "Blume"}, {"fr_CA", "Fleur"}, {"zh-Hant", "花"}}) {
        volume.makeFile(path + "/Contents/Resources/" + language + ".lproj/InfoPlist.strings",
                        "CFBundleDisplayName = \"" + name + "\";");
    }
    const auto name = [&](const std::string& list, const std::string& locale) {
        ProgramOptions options;
        options.environment = {{"LANGUAGE", list}, {"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", locale}};
        const auto result = run({"list", "--rescan", "--json"}, options);
        EXPECT_EQ(result.status, 0) << result.error;
        return json::parse(result.output).at(0).at("name").get<std::string>();
    };
    EXPECT_EQ(name("", "de_AT.UTF-8"), "Blume");
    EXPECT_EQ(name("it:fr:de", "en_US.UTF-8"), "Fleur");
    EXPECT_EQ(name("de", "C"), "Flower");
    EXPECT_EQ(name("", "zh_TW.UTF-8"), "花");
    EXPECT_EQ(name("", ""), "Flower");
}

TEST_F(ListCommand, CountsInThePluralEvenOne) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    EXPECT_TRUE(run({"list"}).output.ends_with("1 applications\n"));
}

TEST_F(ListCommand, KeepsNamesFromCommandingTheTerminal) {
    makeApplication("/Applications/a\x1b[31m\nb.app", "com.example.foo");
    const auto result = run({"list"});
    EXPECT_EQ(result.output.find('\x1b'), std::string::npos);
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2) << result.output;
}

TEST_F(ListCommand, IsExactByURLForANameThatIsNoText) {
    makeApplication("/Applications/\xff.app", "com.example.foo");
    const auto application = document({"list", "--json"}).at(0);
    EXPECT_EQ(application.at("url"), "file:///Applications/%FF.app/");
    EXPECT_EQ(application.at("id"), "/Applications/\xef\xbf\xbd.app");
    EXPECT_EQ(document({"plan", "file:///Applications/%FF.app/", "--json"}).at("items").at(0).at("url"),
              "file:///Applications/%FF.app/");
}

TEST_F(ListCommand, WritesNothingButTheDocumentWhereThereIsNoTerminal) {
    const auto result = run({"list", "--json"});
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, "[]\n");
}

TEST_F(ListCommand, KeepsItsCatalogInTheDataFolderOfThisMachineWithoutAVolume) {
    const ProgramOptions options{
        {{"HOME", volume.path("Users/sample")}, {"XDG_DATA_HOME", volume.path("data")}}, ""};
    const auto result = runProgram({binaryDirectory() + "/orvane-cli", "list"}, options);
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_NE(readFile(volume.path("data/Orvane/applications.json")), "");
}

TEST_F(ListCommand, ReportsOutputThatCannotBeWritten) {
    for (const std::string target : {"> /dev/full", ">&-"}) {
        for (const std::string arguments : {"list", "list --json", "--help"}) {
            SCOPED_TRACE(arguments + target);
            const auto command = R"(exec "$0" --root "$1" )" + arguments + target;
            const auto result =
                runProgram({"/bin/sh", "-c", command, binaryDirectory() + "/orvane-cli", volume.path()});
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.error, "orvane-cli: the output could not be written\n");
        }
    }
}

}  // namespace
}  // namespace orvane::test
