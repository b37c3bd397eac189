#include "Services/ApplicationCatalog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <asio/thread_pool.hpp>
#include <filesystem>
#include <future>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using Applications = std::vector<InstalledApplication>;

const std::string catalogFolder = TestVolume::home() + "/Library/Application Support/Orvane";
const std::string catalogFile = catalogFolder + "/applications.json";

InstalledApplication application(const std::string& path, const std::string& name = "Foo") {
    return {FileURL::fromPath(path, true), name, "org.example.foo", "1.0", 10, Date{5.5}, false, true};
}

std::vector<std::string> namesOf(const Applications& applications) {
    std::vector<std::string> result;
    for (const auto& each : applications) result.push_back(each.name);
    return result;
}

/// A catalog on a volume of its own.
class CatalogOnAVolume {
  public:
    Applications load() { return loop_.run(catalog_.load()); }
    void save(Applications applications) {
        loop_.run(catalog_.save(std::make_shared<const Applications>(std::move(applications))));
    }
    Applications updateAvailability(Applications applications) {
        return loop_.run(catalog_.updateAvailability(std::move(applications)));
    }
    Applications merge(Applications discovered, Applications saved) {
        return loop_.run(
            catalog_.merge(std::move(discovered), std::make_shared<const Applications>(std::move(saved))));
    }
    std::string bytes() const { return readFile(volume.machinePath(catalogFile)); }
    ApplicationCatalog& catalog() { return catalog_; }
    MainLoop& loop() { return loop_; }

    TestVolume volume;

  private:
    MainLoop loop_;
    asio::thread_pool pool_{2};
    std::unique_ptr<LocalizedText> text_ = makeLocalizedText("en_US.UTF-8");
    ApplicationCatalog catalog_{pool_.get_executor(), volume.files(), *text_};
};

class ApplicationCatalogTest : public testing::Test, protected CatalogOnAVolume {};

TEST_F(ApplicationCatalogTest, TheListIsMovedAndNotCopied) {
    Applications list{application("/Applications/Foo.app"), application("/Applications/Bar.app", "Bar")};
    const auto* const place = list.data();
    list = updateAvailability(std::move(list));
    EXPECT_EQ(list.data(), place);
    list = merge(std::move(list), {});
    EXPECT_EQ(list.data(), place);
    EXPECT_EQ(list.front().name, "Bar");
}

TEST_F(ApplicationCatalogTest, LivesInTheApplicationSupportFolder) {
    EXPECT_EQ(catalog().fileURL().path(), catalogFile);
}

TEST_F(ApplicationCatalogTest, TheFirstRunFindsNothingAndTheFirstSaveMakesTheFolder) {
    EXPECT_EQ(load(), Applications());
    EXPECT_FALSE(volume.contains(catalogFolder));
    save({application("/Applications/Foo.app")});
    EXPECT_TRUE(volume.contains(catalogFile));
    EXPECT_EQ(load(), Applications{application("/Applications/Foo.app")});
}

TEST_F(ApplicationCatalogTest, SavingNothingWritesAnEmptyArray) {
    save({});
    EXPECT_EQ(bytes(), "[]");
    EXPECT_EQ(load(), Applications());
}

TEST_F(ApplicationCatalogTest, KeepsTheOrderOfTheList) {
    const Applications list{application("/Applications/B.app", "B"), application("/Applications/A.app", "A"),
                            application("/Applications/B.app", "B")};
    save(list);
    EXPECT_EQ(load(), list);
}

TEST_F(ApplicationCatalogTest, ASaveReplacesWhatWasThere) {
    save({application("/Applications/A.app"), application("/Applications/B.app")});
    save({application("/Applications/C.app")});
    EXPECT_EQ(load(), Applications{application("/Applications/C.app")});
    volume.makeFile(catalogFile, "not a catalog");
    save({application("/Applications/A.app")});
    EXPECT_EQ(load(), Applications{application("/Applications/A.app")});
}

TEST_F(ApplicationCatalogTest, LeavesNothingElseInItsFolder) {
    save({application("/Applications/A.app")});
    save({});
    const auto entries = fs::directory_iterator(volume.machinePath(catalogFolder));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(ApplicationCatalogTest, OneBadElementLoadsAsNothing) {
    save({application("/Applications/A.app"), application("/Applications/B.app")});
    auto text = bytes();
    text.replace(text.rfind("isInstalled"), 11, "isinstalled");
    volume.makeFile(catalogFile, text);
    EXPECT_EQ(load(), Applications());
}

TEST_F(ApplicationCatalogTest, WhatIsNoFileLoadsAsNothing) {
    volume.makeFIFO(catalogFile);
    EXPECT_EQ(load(), Applications());
    fs::remove(volume.machinePath(catalogFile));
    volume.makeDirectory(catalogFile);
    EXPECT_EQ(load(), Applications());
}

TEST_F(ApplicationCatalogTest, AFileTooLargeForACatalogIsNotRead) {
    constexpr std::size_t limit = std::size_t{64} << 20U;
    save({application("/Applications/A.app")});
    const auto text = bytes();
    volume.makeFile(catalogFile, std::string(limit / 64, ' ') + text);
    EXPECT_EQ(load().size(), 1U);
    volume.makeFile(catalogFile, std::string(limit - text.size() + 1, ' ') + text);
    EXPECT_EQ(load(), Applications());
}

TEST_F(ApplicationCatalogTest, WhatCannotBeWrittenLeavesTheOldFile) {
    save({application("/Applications/A.app")});
    auto timeless = application("/Applications/B.app");
    timeless.modifiedAt = Date{std::numeric_limits<double>::quiet_NaN()};
    save({timeless});
    EXPECT_EQ(load(), Applications{application("/Applications/A.app")});
}

TEST_F(ApplicationCatalogTest, AFileInThePlaceOfItsFolderIsLeftAlone) {
    volume.makeFile(catalogFolder, "somebody's");
    const auto before = volume.listing();
    save({application("/Applications/A.app")});
    EXPECT_EQ(volume.listing(), before);
    EXPECT_EQ(load(), Applications());
}

TEST(ApplicationCatalog, AFolderWithoutRightsKeepsTheOldFile) {
    asUnprivilegedUser([] {
        CatalogOnAVolume machine;
        machine.save({application("/Applications/A.app")});
        ::chmod(machine.volume.machinePath(catalogFolder).c_str(), 0500);
        machine.save({application("/Applications/B.app")});
        EXPECT_EQ(machine.load(), Applications{application("/Applications/A.app")});
        ::chmod(machine.volume.machinePath(catalogFolder).c_str(), 0700);
        machine.save({application("/Applications/B.app")});
        EXPECT_EQ(machine.load(), Applications{application("/Applications/B.app")});
    });
}

TEST(ApplicationCatalog, AFileThatCannotBeReadLoadsAsNothing) {
    asUnprivilegedUser([] {
        CatalogOnAVolume machine;
        machine.save({application("/Applications/A.app")});
        ::chmod(machine.volume.machinePath(catalogFile).c_str(), 0);
        EXPECT_EQ(machine.load(), Applications());
    });
}

TEST_F(ApplicationCatalogTest, NamesOfAnyBytesAreSavedAndFoundAgain) {
    volume.makeDirectory("/Applications/\xFF\n'\".app");
    save({application("/Applications/\xFF\n'\".app", "\xFF")});
    const auto available = updateAvailability(load());
    ASSERT_EQ(available.size(), 1U);
    EXPECT_EQ(available[0].id(), "/Applications/\xFF\n'\".app");
    EXPECT_EQ(available[0].name, "\uFFFD");
    EXPECT_TRUE(available[0].isInstalled);
}

TEST_F(ApplicationCatalogTest, AvailabilityIsAsTheDiskHasItNow) {
    volume.makeDirectory("/Applications/Here.app");
    volume.makeDirectory("/Applications/Back.app");
    volume.makeLink("/Applications/Dangling.app", "/nowhere");
    auto back = application("/Applications/Back.app");
    back.isInstalled = false;
    const Applications before{application("/Applications/Gone.app"), application("/Applications/Here.app"),
                              back, application("/Applications/Dangling.app")};
    auto expected = before;
    expected[0].isInstalled = false;
    expected[2].isInstalled = true;
    expected[3].isInstalled = false;
    EXPECT_EQ(updateAvailability(before), expected);
}

TEST_F(ApplicationCatalogTest, AURLThatNamesNoFileIsNotInstalled) {
    volume.makeDirectory("/Applications/Foo.app");
    for (const auto* text : {"file:", "Foo.app", "/Applications/Foo.app",
                             "http://example.org/Applications/Foo.app", "file://host/Applications/Foo.app"}) {
        auto record = application("/");
        record.url = FileURL::fromString(text).value();
        EXPECT_FALSE(updateAvailability({record}).at(0).isInstalled) << text;
    }
}

TEST_F(ApplicationCatalogTest, TheDiscoveredRecordWins) {
    auto discovered = application("/Applications/Foo.app");
    discovered.version = "2.0";
    discovered.size = 20;
    discovered.modifiedAt = std::nullopt;
    for (const auto* saved : {"file:///Applications/Foo.app/", "file:///Applications/Foo.app",
                              "file:///Applications/./x/..//Foo.app"}) {
        auto old = application("/");
        old.url = FileURL::fromString(saved).value();
        EXPECT_EQ(merge({discovered}, {old}), Applications{discovered}) << saved;
    }
}

TEST_F(ApplicationCatalogTest, WhatWasNotDiscoveredIsKeptAsNotInstalled) {
    // The merge goes by what was discovered: it does not look at the disk again.
    volume.makeDirectory("/Applications/Old.app");
    const auto saved = application("/Applications/Old.app", "Old");
    auto expected = saved;
    expected.isInstalled = false;
    EXPECT_EQ(merge({}, {saved}), Applications{expected});
}

TEST_F(ApplicationCatalogTest, SortsByNameWithoutRegardToCase) {
    const auto beta = application("/b.app", "beta");
    const auto upper = application("/A.app", "Alpha");
    const auto lower = application("/a.app", "alpha");
    EXPECT_EQ(namesOf(merge({beta, upper, lower}, {})), (std::vector<std::string>{"Alpha", "alpha", "beta"}));
    EXPECT_EQ(namesOf(merge({beta, lower, upper}, {})), (std::vector<std::string>{"alpha", "Alpha", "beta"}));
}

TEST_F(ApplicationCatalogTest, AnInstalledApplicationComesBeforeAMissingOneOfTheSameName) {
    const auto merged =
        merge({application("/Applications/Foo.app")},
              {application("/Users/sample/Applications/Foo.app"), application("/Old/Foo.app")});
    ASSERT_EQ(merged.size(), 3U);
    EXPECT_EQ(merged[0].id(), "/Applications/Foo.app");
    EXPECT_TRUE(merged[0].isInstalled);
    EXPECT_EQ(merged[1].id(), "/Users/sample/Applications/Foo.app");
    EXPECT_EQ(merged[2].id(), "/Old/Foo.app");
}

TEST_F(ApplicationCatalogTest, KeepsManyOfOneNameInTheirOrder) {
    Applications discovered;
    Applications saved;
    std::vector<std::string> expected;
    for (int number = 0; number < 40; ++number) {
        const auto path = "/" + std::to_string(number * 17 % 40) + ".app";
        discovered.push_back(application("/Applications" + path));
        saved.push_back(application("/Old" + path));
    }
    for (const auto& list : {discovered, saved}) {
        for (const auto& record : list) expected.push_back(record.id());
    }
    std::vector<std::string> merged;
    for (const auto& record : merge(discovered, saved)) merged.push_back(record.id());
    EXPECT_EQ(merged, expected);
}

TEST_F(ApplicationCatalogTest, DuplicatesWithinOneListStay) {
    const auto twice = application("/Applications/Foo.app");
    const auto missing = application("/Applications/Gone.app", "Gone");
    EXPECT_EQ(merge({twice, twice}, {missing, missing}).size(), 4U);
}

TEST_F(ApplicationCatalogTest, ALoadSeesOneSaveOrAnother) {
    std::vector<std::future<void>> saves;
    std::vector<std::future<Applications>> loads;
    for (std::size_t length = 1; length <= 20; ++length) {
        saves.push_back(loop().start(catalog().save(
            std::make_shared<const Applications>(length, application("/Applications/A.app")))));
        loads.push_back(loop().start(catalog().load()));
    }
    for (std::size_t i = 0; i < loads.size(); ++i) {
        loop().wait(std::move(saves[i]));
        EXPECT_EQ(loop().wait(std::move(loads[i])).size(), i + 1);
    }
}

}  // namespace
}  // namespace orvane::test
