#include "Services/RemovalRefusals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <filesystem>

#include "Services/AppRemovalService.h"
#include "Services/LinkedPath.h"
#include "tests/Services/RemovalFixture.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* isLinked = "Orvane does not remove this item, because its path leads through a link.";
constexpr const char* isNoApplication = "Orvane does not remove this item, because it is not an application.";
constexpr const char* isSystems = "Orvane does not remove this item, because it belongs to the system.";
constexpr const char* holdsKept = "Orvane does not remove this item, because something in it is to stay.";

class RemovalRefusalsTest : public RemovalFixture {
  protected:
    std::string reason(const RelatedItem& item, const std::vector<RelatedItem>& kept = {}) const {
        const auto found = volume_.files().makeEntryRemover()->look(item.url);
        return std::string(RemovalRefusals(volume_.files(), kept).reason(item, found));
    }
    std::string reasonForApplication(const std::string& path) const {
        return reason(item(path, RelatedItemKind::application));
    }

    /// Removes in both ways, as the user's item and as the administrator's, and expects nothing but a
    /// refusal.
    void expectRefused(RelatedItem refused, const std::string& expected,
                       const std::vector<RelatedItem>& kept = {}) {
        const auto before = volume_.listing();
        for (const bool requiresAdministrator : {false, true}) {
            refused.requiresAdministrator = requiresAdministrator;
            for (const bool toTrash : {false, true}) {
                asio::thread_pool pool(2);
                AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
                const auto result =
                    mainLoop_.run(toTrash ? service.moveToTrash({refused}, {}, {kept, {}})
                                          : service.deletePermanently({refused}, {}, {kept, {}}));
                EXPECT_THAT(result.removed, IsEmpty()) << refused.id();
                EXPECT_THAT(result.failed, ElementsAre(RemovalResult::Failure{refused.url, expected}));
                EXPECT_EQ(volume_.listing(), before);
            }
        }
        EXPECT_THAT(runner_.runs(), IsEmpty());
    }

    const std::string library = "/Users/sample/Library/";
};

TEST_F(RemovalRefusalsTest, AnApplicationIsOneByItsNameWhateverTheRecordSays) {
    for (const std::string path : {"/Users/sample/Documents", "/opt/tools", "/Applications/Foo.apps",
                                   "/Applications/Foo.app/Contents", "/Applications/..app"}) {
        volume_.makeFile(path + "/file");
        expectRefused(item(path, RelatedItemKind::application), isNoApplication);
        EXPECT_EQ(reason(item(path)), "") << "only an application has to be one";
    }
    for (const std::string path : {"/Applications/Foo.app", "/Applications/Sub/Foo.APP", "/opt/tools/x.app",
                                   "/Users/sample/Desktop/Foo.app"}) {
        volume_.makeFile(path + "/file");
        EXPECT_EQ(reasonForApplication(path), "") << path;
    }
}

TEST_F(RemovalRefusalsTest, WhatTheSystemOwnsStaysWhateverTheRecordSays) {
    volume_.makeFile("/System/Applications/Mail.app/file");
    volume_.makeFile("/System/Library/CoreServices/Finder.app/file");
    expectRefused(item("/System/Applications/Mail.app", RelatedItemKind::application), isSystems);
    expectRefused(item("/System/Library/CoreServices/Finder.app", RelatedItemKind::application), isSystems);
    EXPECT_EQ(reasonForApplication("/./System//Applications/Mail.app"), isSystems);
}

TEST_F(RemovalRefusalsTest, WhatTheSystemOwnsStaysWhereAFixedFolderIsALinkToIt) {
    volume_.makeFile("/System/Applications/Mail.app/file");
    fs::remove(volume_.machinePath("/Applications"));
    volume_.makeLink("/Applications", "System/Applications");
    expectRefused(item("/Applications/Mail.app", RelatedItemKind::application), isSystems);
}

TEST_F(RemovalRefusalsTest, ALinkToASystemApplicationIsALink) {
    volume_.makeFile("/System/Applications/Mail.app/file");
    volume_.makeLink("/Applications/Mail.app", "../System/Applications/Mail.app");
    EXPECT_EQ(reasonForApplication("/Applications/Mail.app"), "");
}

TEST_F(RemovalRefusalsTest, HomesAndTopFoldersStayWhateverTheyAreCalled) {
    for (const std::string path : {"/Users/other", "/Users/Other.app", "/Volumes", "/Top.app", "/Users"}) {
        volume_.makeFile(path + "/file");
        expectRefused(item(path, RelatedItemKind::application), isProtected);
    }
}

TEST_F(RemovalRefusalsTest, NoWayLeadsThroughALinkBelowAFixedFolder) {
    volume_.makeFile("/Users/sample/Documents/y/letter");
    volume_.makeFile("/Users/sample/Documents/Foo.app/file");
    volume_.makeLink(library + "Caches/x", "../../Documents");
    volume_.makeLink("/Applications/Sub", "/Users/sample/Documents");
    volume_.makeLink("/Users/sample/way", "Documents");
    volume_.makeLink("/Volumes", "Users");
    for (const auto& path : {library + "Caches/x/y", library + "Caches/./x//y",
                             std::string("/Users/sample/way/y"), std::string("/Volumes/sample/Documents")}) {
        expectRefused(item(path, RelatedItemKind::cache), isLinked);
    }
    expectRefused(item("/Applications/Sub/Foo.app", RelatedItemKind::application), isLinked);
    EXPECT_EQ(reason(item(library + "Caches/x", RelatedItemKind::cache)), "") << "a link is removed as one";
}

TEST_F(RemovalRefusalsTest, AFixedFolderMayBeALink) {
    volume_.makeFile("/Volumes/Big/Caches/com.example.foo/file");
    volume_.makeDirectory(library);
    volume_.makeLink(library + "Caches", "/Volumes/Big/Caches");
    EXPECT_EQ(reason(item(library + "Caches/com.example.foo")), "");
    EXPECT_EQ(reason(item(library + "Caches/com.example.foo/file")), "");
}

TEST_F(RemovalRefusalsTest, TheHomeAndItsLibraryMayBeLinks) {
    volume_.makeFile("/Volumes/Big/Library/Caches/com.example.foo/file");
    volume_.makeFile("/Volumes/Big/home/Desktop/Foo.app/file");
    fs::remove_all(volume_.machinePath("/Users/sample"));
    volume_.makeLink("/Users/sample", "/Volumes/Big/home");
    volume_.makeLink("/Volumes/Big/home/Library", "/Volumes/Big/Library");
    EXPECT_EQ(reason(item(library + "Caches/com.example.foo")), "");
    EXPECT_EQ(reasonForApplication("/Users/sample/Desktop/Foo.app"), "");
}

TEST_F(RemovalRefusalsTest, WhatHoldsAKeptItemStays) {
    volume_.makeFile(library + "Caches/x/y/file");
    volume_.makeFile(library + "Caches/x2/file");
    const auto kept = item(library + "Caches/x/y");
    expectRefused(item(library + "Caches/x"), holdsKept, {kept});
    expectRefused(kept, holdsKept, {kept});
    EXPECT_EQ(reason(item(library + "Caches/x2"), {kept}), "");
    EXPECT_EQ(reason(item(library + "Caches/x/y/file"), {kept}), "")
        << "it was chosen, and holds nothing kept";
}

TEST_F(RemovalRefusalsTest, WhatHoldsAKeptItemByItsRealPlaceStays) {
    volume_.makeFile("/Applications/Foo.app/Caches/com.example.foo/file");
    volume_.makeFile("/Applications/Foo.app/Logs/Foo");
    volume_.makeDirectory(library);
    volume_.makeLink(library + "Caches", "/Applications/Foo.app/Caches");
    const auto application = item("/Applications/Foo.app", RelatedItemKind::application);
    EXPECT_EQ(reason(item("/Applications/Foo.app/Caches")), isProtected);
    EXPECT_EQ(reason(application, {item("/Applications/Foo.app/Logs/Foo")}), isProtected)
        << "holds the Caches";

    fs::remove(volume_.machinePath(library + "Caches"));
    volume_.makeLink(library + "Caches/com.example.foo", "/Applications/Foo.app/Caches/com.example.foo");
    EXPECT_EQ(reason(application, {item(library + "Caches/com.example.foo")}), "") << "a kept link is a link";
}

TEST_F(RemovalRefusalsTest, TheSameFolderByAnotherWayStaysWithTheKeptOne) {
    volume_.makeFile("/Volumes/Big/Both/Foo/y/file");
    volume_.makeDirectory(library);
    volume_.makeLink(library + "Caches", "/Volumes/Big/Both");
    volume_.makeLink(library + "Logs", "/Volumes/Big/Both");
    expectRefused(item(library + "Logs/Foo"), holdsKept, {item(library + "Caches/Foo")});
    expectRefused(item(library + "Logs/Foo"), holdsKept, {item(library + "Caches/Foo/y")});
}

// What is handed to the administrator may be back by the time that it is removed.
TEST_F(RemovalRefusalsTest, WhatHoldsAKeptItemStaysWhileNeitherIsThere) {
    volume_.makeDirectory("/Library");
    const auto gone = [&](const std::string& path) { return item(path, RelatedItemKind::other, true); };
    const std::vector<RelatedItem> kept{gone("/Library/x/y")};
    EXPECT_EQ(reason(gone("/Library/x"), kept), holdsKept);
    EXPECT_EQ(reason(gone("/Library/x/y"), kept), holdsKept);
    EXPECT_EQ(reason(gone("/Library/./x//y"), kept), holdsKept);
    EXPECT_EQ(reason(gone("/Library/x/y/z"), kept), "");
    EXPECT_EQ(reason(gone("/Library/x/y2"), kept), "");
    EXPECT_EQ(reason(gone("/Library/x2"), kept), "");
}

TEST_F(RemovalRefusalsTest, NoLinkIsOnTheWayToWhatIsNoFile) {
    const auto remote = FileURL::fromString("http://example.org/Library/x").value();
    EXPECT_FALSE(leadsThroughLink(volume_.files(), SystemFolders(url("/Users/sample")), remote));
}

TEST_F(RemovalRefusalsTest, AKeptItemThatIsGoneKeepsNothingElse) {
    volume_.makeFile(library + "Caches/x/file");
    RelatedItem relative;
    relative.url = FileURL::fromString("Caches/x").value();
    EXPECT_EQ(reason(item(library + "Caches/x"), {item(library + "Logs/gone"), relative}), "");
}

TEST_F(RemovalRefusalsTest, WhatIsNotThereIsRefusedForNothing) {
    volume_.makeDirectory(library + "Caches");
    for (const auto& path : {library + "Caches/gone", library + "Caches/../gone",
                             library + "Caches/gone/../Foo", std::string("/System/Gone.app")}) {
        EXPECT_EQ(reasonForApplication(path), "") << path;
        asio::thread_pool pool(2);
        AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
        for (const bool toTrash : {false, true}) {
            const auto result = mainLoop_.run(toTrash ? service.moveToTrash({item(path)}, {}, {})
                                                      : service.deletePermanently({item(path)}, {}, {}));
            EXPECT_THAT(result.removed, IsEmpty()) << path;
            EXPECT_THAT(result.failed, IsEmpty()) << path;
        }
    }
    EXPECT_THAT(runner_.runs(), IsEmpty());
}

TEST_F(RemovalRefusalsTest, TheAdministratorIsNotGivenAWayThatIsRefusedWhereNothingIsThere) {
    volume_.makeDirectory(library + "Caches");
    volume_.makeDirectory("/Users/sample/Documents");
    volume_.makeLink(library + "Caches/x", "../../Documents");
    for (const auto& path : {library + "Caches/../gone", library + "Caches/x/gone"}) {
        asio::thread_pool pool(2);
        AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
        const auto result =
            mainLoop_.run(service.moveToTrash({item(path, RelatedItemKind::other, true)}, {}, {}));
        EXPECT_THAT(result.removed, IsEmpty()) << path;
        EXPECT_EQ(result.failed.size(), 1U) << path;
    }
    EXPECT_THAT(runner_.runs(), IsEmpty());
}

TEST_F(RemovalRefusalsTest, AWayThatBecomesALinkBetweenTwoItemsIsRefused) {
    volume_.makeFile(library + "Caches/x/a");
    volume_.makeFile(library + "Caches/x/b");
    const auto remover = volume_.files().makeEntryRemover();
    const RemovalRefusals refusals(volume_.files(), {});
    const auto reasonInTurn = [&](const RelatedItem& each) {
        return refusals.reason(each, remover->look(each.url));
    };
    EXPECT_EQ(reasonInTurn(item(library + "Caches/x/a")), "");
    EXPECT_TRUE(remover->moveToTrash({}));
    fs::rename(volume_.machinePath(library + "Caches/x"), volume_.machinePath("/moved"));
    volume_.makeLink(library + "Caches/x", "/moved");
    EXPECT_EQ(reasonInTurn(item(library + "Caches/x/b")), isLinked) << "though it is the same folder";
}

TEST_F(RemovalRefusalsTest, AWayThatBecomesALinkAfterThePlanIsRefused) {
    // A folder on its way becomes a link after the plan was made: while the application's processes quit.
    volume_.makeFile("/Users/sample/Documents/y/letter");
    volume_.makeFile(library + "Caches/x/y/file");
    class Swapping : public test::FakeWorkspace {
      public:
        explicit Swapping(const test::TestVolume& volume) : volume_(volume) {}
        void terminate(const RunningService&) override {
            const auto folder = volume_.machinePath("/Users/sample/Library/Caches/x");
            fs::rename(folder, folder + "2");
            fs::create_symlink("../../Documents", folder);
        }

      private:
        const test::TestVolume& volume_;
    } workspace(volume_);
    asio::thread_pool pool(2);
    AppRemovalService service(pool.get_executor(), volume_.files(), workspace, runner_);
    const auto result = mainLoop_.run(service.deletePermanently({item(library + "Caches/x/y")},
                                                                {{10, "Foo", "/Applications/Foo.app"}}, {}));
    EXPECT_THAT(result.failed, ElementsAre(RemovalResult::Failure{url(library + "Caches/x/y"), isLinked}));
    EXPECT_TRUE(volume_.contains("/Users/sample/Documents/y/letter"));
}

}  // namespace
}  // namespace orvane
