#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Platform/Posix/BundleLoader.h"
#include "Services/AppLibrary.h"
#include "Services/AppRemovalService.h"
#include "tests/Fixtures/FailingFileManager.h"
#include "tests/Fixtures/FakePrivilegedRunner.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/ManualClock.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::IsSupersetOf;
using testing::UnorderedElementsAreArray;
using Applications = std::vector<InstalledApplication>;
using Fault = FailingFileManager::Fault;

/// Whether a call of the file manager changes the disk.
bool isChange(const std::string& call) {
    return call == "createDirectory" || call == "writeAtomically" || call == "moveToTrash" ||
           call == "remove";
}

/// Runs a job as it should be, and then again for each call that it made, which fails: one that changes the
/// disk before and after it has done so. `Job` is made anew for each run, with the disk that it works on, and
/// has `FailingFileManager files`, `run()` and `check()`. Gives the names of the calls.
template <typename Job>
std::set<std::string> failEachCallOf() {
    Job clean;
    clean.run();
    const auto calls = clean.files.calls();
    clean.check();
    for (std::size_t number = 0; number < calls.size(); ++number) {
        for (const auto fault : {Fault::before, Fault::after}) {
            if (fault == Fault::after && !isChange(calls[number])) continue;
            SCOPED_TRACE(calls[number] + ", call " + std::to_string(number) +
                         (fault == Fault::after ? ", after it was done" : ""));
            Job job;
            job.files.failCall(number, fault);
            job.run();
            EXPECT_TRUE(job.files.hasFailed());
            job.check();
            if (testing::Test::HasFailure()) return {};
        }
    }
    return {calls.begin(), calls.end()};
}

InstalledApplication record(const std::string& name) {
    InstalledApplication application;
    application.url = FileURL::fromPath("/Applications/" + name + ".app", true);
    application.name = name;
    application.version = "1";
    application.isInstalled = true;
    return application;
}

/// A catalog with something in it.
struct CatalogJob {
    CatalogJob() { loop.run(catalogOf(volume.files()).save(std::make_shared<const Applications>(before))); }

    ApplicationCatalog catalogOf(FileManager& manager) { return {pool.get_executor(), manager, *text}; }
    /// What is saved now, as the real file manager reads it.
    Applications saved() {
        auto catalog = catalogOf(volume.files());
        return loop.run(catalog.load());
    }
    void expectNothingBesideTheFile() {
        const auto file =
            volume.machinePath(ApplicationCatalog(pool.get_executor(), files, *text).fileURL().path());
        const auto entries = fs::directory_iterator(fs::path(file).parent_path());
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
    }

    TestVolume volume;
    FailingFileManager files{volume.files()};
    MainLoop loop;
    asio::thread_pool pool{1};
    std::unique_ptr<LocalizedText> text = makeLocalizedText("en_US.UTF-8");
    const Applications before{record("Old")};
};

struct SavingJob : CatalogJob {
    void run() {
        auto catalog = catalogOf(files);
        loop.run(catalog.save(std::make_shared<const Applications>(after)));
    }
    void check() {
        const auto found = saved();
        EXPECT_TRUE(found == before || found == after) << found.size();
        if (!files.hasFailed()) {
            EXPECT_EQ(found, after);
        }
        expectNothingBesideTheFile();
        // Whatever went wrong, the next save does its work.
        run();
        EXPECT_EQ(saved(), after);
    }

    const Applications after{record("New"), record("Newer")};
};

TEST(FailureOnCue, ASaveLeavesTheOldCatalogOrTheNewOne) {
    EXPECT_THAT(failEachCallOf<SavingJob>(),
                UnorderedElementsAreArray({"createDirectory", "writeAtomically"}));
}

/// A whole scan of a disk with two applications.
struct ScanningJob : CatalogJob {
    ScanningJob() {
        for (const auto* name : {"Foo", "Bar"}) {
            volume.makeFile(std::string("/Applications/") + name + ".app/Contents/Info.plist",
                            "<plist><dict><key>CFBundleName</key><string>" + std::string(name) +
                                "</string></dict></plist>");
        }
    }

    void run() {
        const auto loader = makeBundleLoader(files);
        ApplicationScanner scanner(pool.get_executor(), files, *loader, *text);
        auto catalog = catalogOf(files);
        const auto library = AppLibrary::make(loop.executor(), scanner, catalog, *text, clock);
        loop.run(library->loadCatalog());
        loop.run(library->scan());
        EXPECT_FALSE(library->isScanning());
        listed = library->applications();
    }
    void check() {
        const auto found = saved();
        // What the file holds was listed at some time: before the scan, or at its end.
        const bool isOld = found.size() == 1 && found.front().name == "Old";
        EXPECT_TRUE(isOld || found == listed) << found.size();
        expectNothingBesideTheFile();
        if (!files.hasFailed()) {
            EXPECT_EQ(listed.size(), 3U);
        }
    }

    Applications listed;
    /// The application that is missing waits for its time, which does not come.
    ManualClock clock{loop.executor()};
};

TEST(FailureOnCue, AScanEndsAndSavesWhatItListsOrNothing) {
    EXPECT_THAT(failEachCallOf<ScanningJob>(),
                IsSupersetOf({"fileExists", "filesExist", "contentsOfDirectory", "resourceValues", "contents",
                              "allocatedSizes", "createDirectory", "writeAtomically"}));
}

/// A removal of a folder and a file of the user's own and a file of the administrator's, beside files that
/// stay.
template <RemovalMode mode>
struct RemovingJob {
    RemovingJob() {
        volume.makeDirectory(TestVolume::trash());
        volume.makeFile("/Applications/Stays.app/file", "stays");
        volume.makeFile(TestVolume::trash() + "/Foo.app", "in the Trash before");
        for (const auto& item : items) volume.makeFile(fileOf(item), item.id());
        runner.setBehaviour([this](const PrivilegedRequest& request) { return carryOut(request); });
    }

    void run() {
        AppRemovalService service(pool.get_executor(), files, workspace, runner);
        result = loop.run(mode == RemovalMode::trash ? service.moveToTrash(items, {}, {})
                                                     : service.deletePermanently(items, {}, {}));
    }

    void check() const {
        std::vector<std::string> reported;
        for (const auto& url : result.removed) {
            reported.push_back(url.path());
            EXPECT_FALSE(volume.contains(url.path())) << "a false success: " << url.path();
        }
        for (const auto& failure : result.failed) {
            reported.push_back(failure.url.path());
            EXPECT_NE(failure.reason, "");
        }
        EXPECT_THAT(reported, UnorderedElementsAreArray({items[0].id(), items[1].id(), items[2].id()}));
        for (const auto& item : items) {
            const bool isWhole = contentsOf(fileOf(item)) == item.id();
            if (mode == RemovalMode::trash) {
                EXPECT_NE(isWhole, isInTrash(item.id())) << "lost or doubled: " << item.id();
            } else {
                EXPECT_EQ(isWhole, volume.contains(item.id())) << "half of it: " << item.id();
            }
        }
        EXPECT_EQ(contentsOf("/Applications/Stays.app/file"), "stays");
        EXPECT_EQ(contentsOf(TestVolume::trash() + "/Foo.app"), "in the Trash before");
        if (!files.hasFailed()) {
            EXPECT_EQ(result.removed.size(), items.size());
        }
    }

    static RelatedItem item(const std::string& path, RelatedItemKind kind, bool requiresAdministrator) {
        return {url(path), kind, 1, requiresAdministrator, std::nullopt};
    }
    /// A bundle is a folder with a file in it.
    static std::string fileOf(const RelatedItem& item) {
        return item.id() + (item.kind == RelatedItemKind::application ? "/file" : "");
    }

    PrivilegedOutcome carryOut(const PrivilegedRequest& request) const {
        std::error_code ignored;
        for (const auto& each : request.items) {
            const auto source = volume.machinePath(each.source);
            if (mode == RemovalMode::permanent) {
                fs::remove_all(source, ignored);
            } else if (!fs::exists(volume.machinePath(each.destination))) {
                fs::rename(source, volume.machinePath(each.destination), ignored);
            }
        }
        return {};
    }

    std::string contentsOf(const std::string& path) const {
        return volume.files().contents(url(path), 1000).value_or("nothing");
    }
    bool isInTrash(const std::string& contents) const {
        for (const auto& entry : fs::recursive_directory_iterator(volume.machinePath(TestVolume::trash()))) {
            if (entry.is_regular_file() && readFile(entry.path().string()) == contents) return true;
        }
        return false;
    }

    const std::vector<RelatedItem> items{
        item("/Applications/Foo.app", RelatedItemKind::application, false),
        item(TestVolume::home() + "/Library/Application Support/Maker/Foo",
             RelatedItemKind::applicationSupport, false),
        item("/Library/LaunchDaemons/org.example.foo.plist", RelatedItemKind::launchDaemon, true)};
    TestVolume volume;
    FailingFileManager files{volume.files()};
    FakeWorkspace workspace;
    FakePrivilegedRunner runner;
    MainLoop loop;
    asio::thread_pool pool{2};
    RemovalResult result;
};

TEST(FailureOnCue, AMoveToTheTrashLosesNothingAndClaimsNothing) {
    EXPECT_THAT(failEachCallOf<RemovingJob<RemovalMode::trash>>(),
                IsSupersetOf({"fileExists", "identity", "look", "moveToTrash"}));
}

TEST(FailureOnCue, ADeletionTakesAllOrNothingAndClaimsNothing) {
    EXPECT_THAT(failEachCallOf<RemovingJob<RemovalMode::permanent>>(),
                IsSupersetOf({"fileExists", "identity", "look", "remove"}));
}

}  // namespace
}  // namespace orvane::test
