#include <chrono>
#include <filesystem>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Services/ApplicationScannerFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(ApplicationScannerTest, FindsNothingWhereNoApplicationFolderExists) {
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ApplicationScannerTest, LooksInTheMachinesTheUsersAndTheSystemsFolder) {
    volume.addApplication("/System/Applications/A.app");
    volume.addApplication("/Users/sample/Applications/B.app");
    volume.addApplication("/Applications/C.app");
    volume.addApplication("/Users/other/Applications/D.app");
    EXPECT_THAT(paths(scan()), ElementsAre("/System/Applications/A.app", "/Users/sample/Applications/B.app",
                                           "/Applications/C.app"));
}

TEST_F(ApplicationScannerTest, DescribesABundle) {
    const auto url =
        volume.addApplication("/Applications/Foo.app", {{"CFBundleDisplayName", "Foo Deluxe"},
                                                        {"CFBundleName", "Foo"},
                                                        {"CFBundleIdentifier", "com.example.foo"},
                                                        {"CFBundleShortVersionString", "1.2.3"},
                                                        {"CFBundleVersion", "42"}});
    const auto application = scanned();
    EXPECT_EQ(application.url, url);
    EXPECT_EQ(application.name, "Foo Deluxe");
    EXPECT_EQ(application.bundleIdentifier, "com.example.foo");
    EXPECT_EQ(application.version, "1.2.3");
    EXPECT_TRUE(application.isInstalled);
    EXPECT_FALSE(application.isSystemApplication);
}

TEST_F(ApplicationScannerTest, NamesABundleAsItIsCalledInTheLanguage) {
    volume.addApplication("/Applications/Foo.app", {{"CFBundleName", "Foo"},
                                                    {"CFBundleIdentifier", "com.example.foo"},
                                                    {"CFBundleShortVersionString", "1.2.3"}});
    volume.makeFile("/Applications/Foo.app/Contents/Resources/en.lproj/InfoPlist.strings",
                    "CFBundleDisplayName = Phew; CFBundleShortVersionString = One; "
                    "CFBundleIdentifier = com.example.phew;");
    const auto application = scanned();
    EXPECT_EQ(application.name, "Phew");
    EXPECT_EQ(application.version, "One");
    EXPECT_EQ(application.bundleIdentifier, "com.example.foo");
}

TEST_F(ApplicationScannerTest, SortsBundlesByTheirNamesInTheLanguage) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    volume.makeFile("/Applications/A.app/Contents/Resources/en.lproj/InfoPlist.strings", "CFBundleName = Z;");
    EXPECT_THAT(names(scan()), ElementsAre("B", "Z"));
}

TEST_F(ApplicationScannerTest, LeavesBundlesInSubfoldersAlone) {
    volume.addApplication("/Applications/Utilities/Inner.app");
    volume.addApplication("/Applications/Outer.app/Contents/Helper.app");
    EXPECT_THAT(paths(scan()), ElementsAre("/Applications/Outer.app"));
}

TEST_F(ApplicationScannerTest, TakesTheExtensionInAnyCaseAndNoOther) {
    volume.addApplication("/Applications/Foo.APP");
    volume.makeFile("/Applications/Foo.app.zip");
    volume.makeDirectory("/Applications/Foo");
    volume.makeDirectory("/Applications/app");
    volume.makeDirectory("/Applications/Foo.apps");
    EXPECT_THAT(paths(scan()), ElementsAre("/Applications/Foo.APP"));
}

TEST_F(ApplicationScannerTest, SkipsHiddenChildren) {
    volume.addApplication("/Applications/.Hidden.app");
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ApplicationScannerTest, ListsWhateverCannotBeOpenedUnderItsFileName) {
    volume.makeFile("/Applications/File.app");
    volume.makeDirectory("/Applications/Empty.app");
    volume.addApplicationWithInfo("/Applications/Broken.app", "<plist><dict><key>CFBundleName");
    volume.makeFIFO("/Applications/Pipe.app");
    volume.makeLink("/Applications/Dangling.app", "/nowhere");
    const auto applications = scan();
    EXPECT_THAT(names(applications), ElementsAre("Broken", "Dangling", "Empty", "File", "Pipe"));
    for (const auto& application : applications) {
        EXPECT_EQ(application.version, "Unknown") << application.name;
        EXPECT_EQ(application.bundleIdentifier, std::nullopt) << application.name;
        EXPECT_TRUE(application.isInstalled) << application.name;
        EXPECT_EQ(application.size > 0, application.name == "Broken") << application.name;
    }
}

TEST_F(ApplicationScannerTest, FallsBackToTheBundleNameAndThenTheFileName) {
    volume.addApplication("/Applications/One.app", {{"CFBundleName", "First"}});
    volume.addApplication("/Applications/Two.app", {{"CFBundleIdentifier", "com.example.two"}});
    EXPECT_THAT(names(scan()), ElementsAre("First", "Two"));
}

TEST_F(ApplicationScannerTest, TakesAnEmptyNameAndAnEmptyVersionAsTheyAre) {
    volume.addApplication("/Applications/Foo.app", {{"CFBundleDisplayName", ""},
                                                    {"CFBundleName", "Bar"},
                                                    {"CFBundleShortVersionString", ""},
                                                    {"CFBundleVersion", "42"}});
    const auto application = scanned();
    EXPECT_EQ(application.name, "");
    EXPECT_EQ(application.version, "");
}

TEST_F(ApplicationScannerTest, PassesOverValuesThatAreNoText) {
    volume.addApplicationWithInfo("/Applications/Foo.app", R"(<plist version="1.0"><dict>
        <key>CFBundleDisplayName</key><array/>
        <key>CFBundleName</key><string>Bar</string>
        <key>CFBundleShortVersionString</key><integer>7</integer>
        <key>CFBundleVersion</key><string>42</string>
        <key>CFBundleIdentifier</key><true/>
        </dict></plist>)");
    const auto application = scanned();
    EXPECT_EQ(application.name, "Bar");
    EXPECT_EQ(application.version, "42");
    EXPECT_EQ(application.bundleIdentifier, std::nullopt);
}

TEST_F(ApplicationScannerTest, FallsBackToTheBuildVersionAndThenToUnknown) {
    volume.addApplication("/Applications/A.app", {{"CFBundleVersion", "42"}});
    volume.addApplication("/Applications/B.app", {{"CFBundleName", "B"}});
    const auto applications = scan();
    ASSERT_THAT(applications, SizeIs(2));
    EXPECT_EQ(applications[0].version, "42");
    EXPECT_EQ(applications[1].version, "Unknown");
}

TEST_F(ApplicationScannerTest, CallsOnlyWhatLiesUnderSystemASystemApplication) {
    volume.addApplication("/Applications/A.app", {{"CFBundleIdentifier", "com.apple.a"}});
    volume.addApplication("/System/Applications/B.app");
    volume.addApplication("/Users/sample/Applications/C.app");
    const auto applications = scan();
    ASSERT_THAT(applications, SizeIs(3));
    EXPECT_FALSE(applications[0].isSystemApplication);
    EXPECT_TRUE(applications[1].isSystemApplication);
    EXPECT_FALSE(applications[2].isSystemApplication);
}

TEST_F(ApplicationScannerTest, ReportsTheBundlesModificationDate) {
    volume.addApplication("/Applications/Foo.app");
    const std::chrono::sys_seconds moment(std::chrono::seconds(1'580'688'000));
    std::filesystem::last_write_time(volume.machinePath("/Applications/Foo.app"),
                                     std::chrono::file_clock::from_sys(moment));
    EXPECT_EQ(scanned().modifiedAt, Date::fromUnixTime(1'580'688'000));
}

TEST_F(ApplicationScannerTest, SortsByNameWithoutRegardToCase) {
    volume.addApplication("/Applications/zeta.app");
    volume.addApplication("/Applications/Alpha.app");
    volume.addApplication("/Users/sample/Applications/beta.app");
    EXPECT_THAT(names(scan()), ElementsAre("Alpha", "beta", "zeta"));
}

TEST_F(ApplicationScannerTest, KeepsTheOrderOfTheFoldersAndOfTheirListingsForEqualNames) {
    std::vector<std::string> expected;
    for (const std::string folder : {"/Applications", "/Users/sample/Applications", "/System/Applications"}) {
        for (const auto* name : {"SAME", "same", "Same"}) {
            for (const auto* number : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
                volume.addApplication(folder + "/" + name + number + ".app", {{"CFBundleName", name}});
            }
        }
        const auto listing = volume.files().contentsOfDirectory(FileURL::fromPath(folder, true), {});
        for (const auto& entry : listing.value()) expected.push_back(entry.url.path());
    }
    EXPECT_EQ(paths(scan()), expected);
}

TEST_F(ApplicationScannerTest, ListsABundleOnceWhenTwoFoldersAreTheSame) {
    volume.addApplication("/Applications/Foo.app");
    const auto files = makeFileManager(volume.volume(), "/", "/Library/Application Support");
    ApplicationScanner scannerOfRoot(pool.get_executor(), *files, volume.bundleLoader(),
                                     volume.localizedText());
    EXPECT_THAT(paths(mainLoop.run(scannerOfRoot.scan())), ElementsAre("/Applications/Foo.app"));
}

TEST_F(ApplicationScannerTest, ListsABundleTwiceThatIsReachedThroughALinkedFolder) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeLink("/Users/sample/Applications", "/Applications");
    EXPECT_THAT(paths(scan()), ElementsAre("/Applications/Foo.app", "/Users/sample/Applications/Foo.app"));
}

TEST_F(ApplicationScannerTest, PassesOverAFolderThatCannotBeListed) {
    volume.makeFile("/Applications");
    volume.addApplication("/System/Applications/Foo.app");
    EXPECT_THAT(paths(scan()), ElementsAre("/System/Applications/Foo.app"));
}

TEST_F(ApplicationScannerTest, KeepsThePathsBytesAndMakesTextOfTheName) {
    volume.addApplication("/Applications/B\xFCro\n'$(x)'.app");
    const auto application = scanned();
    EXPECT_EQ(application.id(), "/Applications/B\xFCro\n'$(x)'.app");
    EXPECT_EQ(application.name, "B\xEF\xBF\xBDro\n'$(x)'");
}

TEST_F(ApplicationScannerTest, DescribesManyBundlesEachByItsOwn) {
    for (int i = 100; i < 300; ++i) {
        const auto number = std::to_string(i);
        volume.addApplication("/Applications/" + number + ".app", {{"CFBundleVersion", number}});
    }
    const auto applications = scan();
    ASSERT_THAT(applications, SizeIs(200));
    for (std::size_t i = 0; i < applications.size(); ++i) {
        EXPECT_EQ(applications[i].name, std::to_string(100 + i));
        EXPECT_EQ(applications[i].version, std::to_string(100 + i));
    }
}

TEST_F(ApplicationScannerTest, SeesTheDiskAnewWithEachScan) {
    volume.addApplication("/Applications/A.app");
    EXPECT_THAT(names(scan()), ElementsAre("A"));
    volume.addApplication("/Applications/B.app");
    EXPECT_THAT(names(scan()), ElementsAre("A", "B"));
    volume.remove("/Applications/A.app");
    EXPECT_THAT(names(scan()), ElementsAre("B"));
}

TEST_F(ApplicationScannerTest, AnswersScansThatOverlap) {
    volume.addApplication("/Applications/A.app");
    auto first = mainLoop.start(scanner.scan());
    auto second = mainLoop.start(scanner.scan());
    EXPECT_THAT(names(mainLoop.wait(std::move(second))), ElementsAre("A"));
    EXPECT_THAT(names(mainLoop.wait(std::move(first))), ElementsAre("A"));
}

TEST_F(ApplicationScannerTest, ChangesNothingOnTheDisk) {
    volume.addApplication("/Applications/A.app", {{"CFBundleName", "A"}});
    const auto before = volume.listing();
    scan();
    EXPECT_EQ(volume.listing(), before);
}

}  // namespace
}  // namespace orvane
