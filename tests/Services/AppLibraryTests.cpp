#include "tests/Services/AppLibraryFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(AppLibraryTest, BeginsEmpty) {
    EXPECT_THAT(library->applications(), IsEmpty());
    EXPECT_EQ(library->selectedApplicationID(), std::nullopt);
    EXPECT_EQ(library->selectedApplication(), nullptr);
    EXPECT_EQ(library->searchText(), "");
    EXPECT_FALSE(library->isScanning());
}

TEST_F(AppLibraryTest, ScansAndSavesOnItsFirstRun) {
    volume.addApplication("/Applications/B.app");
    volume.addApplication("/Applications/A.app");
    EXPECT_FALSE(volume.contains("/Users/sample/Library/Application Support/Orvane"));
    load();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app", "/Applications/B.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app", "/Applications/B.app"));
    EXPECT_FALSE(library->isScanning());
}

TEST_F(AppLibraryTest, ScansWhenTheCatalogCannotBeRead) {
    volume.addApplication("/Applications/A.app");
    volume.makeFile(std::string(catalog.fileURL().path()), "[{\"name\":\"half");
    load();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, ShowsTheSavedCatalogWithoutScanning) {
    volume.addApplication("/Applications/Z.app");
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/New.app");
    save({record("/Applications/Z.app"), missing("/Applications/A.app"), record("/Applications/Gone.app")});
    load();
    EXPECT_THAT(listed(),
                ElementsAre("/Applications/Z.app", "/Applications/A.app", "/Applications/Gone.app?"));
    EXPECT_THAT(saved(),
                ElementsAre("/Applications/Z.app", "/Applications/A.app", "/Applications/Gone.app?"));
    EXPECT_EQ(library->applications()[0].version, "saved");
}

TEST_F(AppLibraryTest, LoadsNothingOnceItHoldsSomething) {
    volume.addApplication("/Applications/A.app");
    load();
    save({record("/Applications/Other.app")});
    load();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, MergesAScanWithTheListInMemoryNotWithTheFile) {
    volume.addApplication("/Applications/A.app");
    scan();
    save({record("/Applications/OnlyInTheFile.app")});
    volume.addApplication("/Applications/B.app");
    volume.remove("/Applications/A.app");
    scan();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app?", "/Applications/B.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app?", "/Applications/B.app"));
}

TEST_F(AppLibraryTest, RefreshesWhatIsInstalledWithoutLookingForMore) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    scan();
    volume.remove("/Applications/A.app");
    volume.addApplication("/Applications/C.app");
    refresh();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app?", "/Applications/B.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app?", "/Applications/B.app"));
}

TEST_F(AppLibraryTest, ShowsEverythingForAnEmptySearch) {
    volume.addApplication("/Applications/A.app");
    scan();
    EXPECT_EQ(marked(library->filteredApplications()), listed());
}

TEST_F(AppLibraryTest, SearchesNamesAndIdentifiersWithoutRegardToCase) {
    volume.addApplication("/Applications/Safari.app", {{"CFBundleIdentifier", "com.example.browser"}});
    volume.addApplication("/Applications/Tool.app", {{"CFBundleIdentifier", "org.example.SafariTool"}});
    volume.addApplication("/Applications/Version.app", {{"CFBundleVersion", "safari"}});
    volume.addApplication("/Applications/safari.d.app",
                          {{"CFBundleName", "Named Otherwise"}, {"CFBundleIdentifier", "org.example.d"}});
    scan();
    library->setSearchText("safari");
    EXPECT_THAT(marked(library->filteredApplications()),
                ElementsAre("/Applications/Safari.app", "/Applications/Tool.app"));
    EXPECT_THAT(library->applications(), SizeIs(4));
}

TEST_F(AppLibraryTest, SearchesForBlanksAsTheyAre) {
    volume.addApplication("/Applications/Two Words.app");
    volume.addApplication("/Applications/Word.app");
    scan();
    library->setSearchText(" ");
    EXPECT_THAT(marked(library->filteredApplications()), ElementsAre("/Applications/Two Words.app"));
    library->setSearchText("   ");
    EXPECT_THAT(library->filteredApplications().shown, IsEmpty());
}

TEST_F(AppLibraryTest, SelectsTheFirstInstalledApplicationThatIsNotTheSystems) {
    volume.addApplication("/System/Applications/A.app");
    volume.addApplication("/Applications/C.app");
    volume.addApplication("/Applications/D.app");
    save({missing("/Applications/B.app"), record("/System/Applications/A.app"), record("/Applications/C.app"),
          record("/Applications/D.app")});
    load();
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/C.app");
    ASSERT_NE(library->selectedApplication(), nullptr);
    EXPECT_EQ(library->selectedApplication()->name, "C");
}

TEST_F(AppLibraryTest, SelectsASystemApplicationWhenNoOtherIsInstalled) {
    volume.addApplication("/System/Applications/B.app");
    save({missing("/Applications/A.app"), record("/System/Applications/B.app")});
    load();
    EXPECT_EQ(library->selectedApplicationID(), "/System/Applications/B.app");
}

TEST_F(AppLibraryTest, SelectsAMissingApplicationWhenNoneIsInstalled) {
    save({missing("/Applications/B.app"), missing("/Applications/A.app")});
    load();
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/B.app");
}

TEST_F(AppLibraryTest, SelectsNothingInAnEmptyList) {
    library->setSelectedApplicationID("/Applications/A.app");
    scan();
    EXPECT_EQ(library->selectedApplicationID(), std::nullopt);
}

TEST_F(AppLibraryTest, KeepsTheSelectionOnAnInstalledSystemApplication) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/System/Applications/B.app");
    scan();
    library->setSelectedApplicationID("/System/Applications/B.app");
    scan();
    EXPECT_EQ(library->selectedApplicationID(), "/System/Applications/B.app");
}

TEST_F(AppLibraryTest, MovesTheSelectionOffAMissingApplication) {
    volume.addApplication("/System/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    volume.addApplication("/Applications/C.app");
    scan();
    library->setSelectedApplicationID("/Applications/B.app");
    volume.remove("/Applications/B.app");
    scan();
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/C.app");
}

TEST_F(AppLibraryTest, MovesTheSelectionOffAnApplicationThatARefreshFindsMissing) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    volume.addApplication("/Applications/C.app");
    scan();
    library->setSelectedApplicationID("/Applications/B.app");
    volume.remove("/Applications/B.app");
    refresh();
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/A.app");
}

TEST_F(AppLibraryTest, SelectsNoApplicationForAnUnknownID) {
    volume.addApplication("/Applications/A.app");
    scan();
    library->setSelectedApplicationID("/Applications/Other.app");
    EXPECT_EQ(library->selectedApplication(), nullptr);
}

TEST_F(AppLibraryTest, SurvivesACatalogThatCannotBeSaved) {
    volume.addApplication("/Applications/A.app");
    volume.makeFile("/Users/sample/Library/Application Support/Orvane", "not a folder");
    load();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/A.app");
    EXPECT_FALSE(library->isScanning());
}

}  // namespace
}  // namespace orvane
