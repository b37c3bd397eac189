#include "Services/AppRemovalService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <filesystem>

#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Services/RemovalFixture.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Failure = RemovalResult::Failure;
using Items = std::vector<RelatedItem>;
using Services = std::vector<RunningService>;

class AppRemovalServiceTest : public RemovalFixture {
  protected:
    // The service is made for each call: a test that becomes another user first may have no thread yet.
    RemovalResult moveToTrash(Items items, Services services = {}, Items kept = {}) {
        return onService([&](auto& s) {
            return s.moveToTrash(std::move(items), std::move(services), {std::move(kept), {}});
        });
    }
    RemovalResult deletePermanently(Items items, Services services = {}, Items kept = {}) {
        return onService([&](auto& s) {
            return s.deletePermanently(std::move(items), std::move(services), {std::move(kept), {}});
        });
    }

    template <typename Call>
    RemovalResult onService(Call call) {
        asio::thread_pool pool(2);
        AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
        return mainLoop_.run(call(service));
    }

    void letTheCommandsSucceed() {
        runner_.setBehaviour([this](const PrivilegedRequest& request) { return carryOut(request); });
    }

    /// The sources of the one request that was made.
    std::vector<std::string> privilegedSources() const {
        std::vector<std::string> sources;
        EXPECT_THAT(runner_.runs(), SizeIs(1));
        for (const auto& request : runner_.requests()) {
            for (const auto& item : request.items) sources.push_back(item.source);
        }
        return sources;
    }
};

TEST_F(AppRemovalServiceTest, NothingToDoAsksForNothing) {
    for (const auto& result : {moveToTrash({}), deletePermanently({})}) {
        EXPECT_THAT(result.removed, IsEmpty());
        EXPECT_THAT(result.failed, IsEmpty());
    }
    EXPECT_THAT(runner_.runs(), IsEmpty());
    EXPECT_THAT(workspace_.terminated(), IsEmpty());
}

TEST_F(AppRemovalServiceTest, ProcessesAreAskedToQuitInOrderWithoutItemsToo) {
    const Services services{{30, "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"},
                            {20, "Helper", ""},
                            {40, "Other", "/Applications/Foo.app/Contents/MacOS/Other"}};

    const auto result = moveToTrash({}, services);

    EXPECT_EQ(workspace_.terminated(), services);
    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_THAT(runner_.runs(), IsEmpty());
}

/// A desktop that looks at a file whenever a process is asked to quit.
class WatchfulWorkspace : public test::FakeWorkspace {
  public:
    explicit WatchfulWorkspace(std::string file) : file_(std::move(file)) {}
    void terminate(const RunningService& service) override {
        FakeWorkspace::terminate(service);
        if (fs::exists(file_)) ++timesFound;
    }
    int timesFound = 0;

  private:
    std::string file_;
};

TEST_F(AppRemovalServiceTest, EveryProcessIsAskedBeforeTheFirstItemGoes) {
    const auto doomed = madeItem("/Applications/Foo.app/Contents/Info.plist");
    WatchfulWorkspace workspace(volume_.machinePath(doomed.id()));
    asio::thread_pool pool(2);
    AppRemovalService service(pool.get_executor(), volume_.files(), workspace, runner_);

    mainLoop_.run(service.deletePermanently({doomed}, {{10, "a", "/a"}, {11, "b", "/b"}}, {}));

    EXPECT_EQ(workspace.timesFound, 2);
    EXPECT_FALSE(volume_.contains(doomed.id()));
}

TEST_F(AppRemovalServiceTest, AnItemOfTheUsersOwnGoesToTheTrashWithoutAPrompt) {
    volume_.makeFile("/Applications/Foo.app/Contents/Info.plist");

    const auto result = moveToTrash({item("/Applications/Foo.app")});

    EXPECT_THAT(result.removed, ElementsAre(url("/Applications/Foo.app")));
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_THAT(runner_.runs(), IsEmpty());
    EXPECT_FALSE(volume_.contains("/Applications/Foo.app"));
    EXPECT_TRUE(volume_.contains("/Users/sample/.Trash/Foo.app/Contents/Info.plist"));
}

TEST_F(AppRemovalServiceTest, DeletingTakesAFolderWithItsContentsAndLeavesSiblingsAlone) {
    volume_.makeFile("/Applications/Bar.app/Contents/Info.plist");
    const auto before = volume_.listing();
    volume_.makeFile("/Applications/Foo.app/Contents/Info.plist");
    volume_.makeLink("/Applications/Foo.app/Contents/link", "/Applications/Bar.app");

    const auto result = deletePermanently({item("/Applications/Foo.app")});

    EXPECT_THAT(result.removed, ElementsAre(url("/Applications/Foo.app")));
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_THAT(runner_.runs(), IsEmpty());
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(AppRemovalServiceTest, AnAdministratorsItemIsNeverTriedWithTheUsersRights) {
    const auto theirs = madeAdministratorItem("/Library/LaunchAgents/a.plist");
    const auto before = volume_.listing();

    for (const auto& result : {moveToTrash({theirs}), deletePermanently({theirs})}) {
        EXPECT_THAT(result.removed, IsEmpty());
        EXPECT_THAT(result.failed, ElementsAre(Failure{theirs.url, stillExists}));
    }
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(AppRemovalServiceTest, TheActionIsTheModes) {
    const auto theirs = madeAdministratorItem("/Library/a");
    moveToTrash({theirs});
    deletePermanently({theirs});

    const auto requests = runner_.requests();
    ASSERT_THAT(requests, SizeIs(2));
    EXPECT_EQ(requests[0].mode, RemovalMode::trash);
    EXPECT_EQ(requests[0].items.front().destination, "/Users/sample/.Trash/a");
    EXPECT_EQ(requests[1].mode, RemovalMode::permanent);
    EXPECT_EQ(requests[1].items.front().destination, "");
}

TEST_F(AppRemovalServiceTest, AVanishedItemIsNeitherRemovedNorFailed) {
    const auto result = moveToTrash({item("/Library/gone"), madeItem("/Library/here")});

    EXPECT_THAT(result.removed, ElementsAre(url("/Library/here")));
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_THAT(runner_.runs(), IsEmpty());
}

TEST_F(AppRemovalServiceTest, AnItemThatWentWithAnEarlierOneIsDropped) {
    const auto inner = madeItem("/Applications/Foo.app/Contents/Info.plist");
    const auto result =
        deletePermanently({item("/Applications/Foo.app"), inner, item("/Applications/Foo.app")});

    EXPECT_THAT(result.removed, ElementsAre(url("/Applications/Foo.app")));
    EXPECT_THAT(result.failed, IsEmpty());
}

TEST_F(AppRemovalServiceTest, ADanglingLinkDoesNotExist) {
    volume_.makeLink("/Library/link", "/nowhere");
    const auto result = deletePermanently({item("/Library/link")});

    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_TRUE(volume_.contains("/Library/link"));
}

TEST_F(AppRemovalServiceTest, ALinkIsRemovedAsALink) {
    volume_.makeFile("/Volumes/Data/kept");
    for (const bool toTrash : {true, false}) {
        volume_.makeLink("/Library/link", "/Volumes/Data");
        const auto result =
            toTrash ? moveToTrash({item("/Library/link")}) : deletePermanently({item("/Library/link")});

        EXPECT_THAT(result.removed, ElementsAre(url("/Library/link")));
        EXPECT_FALSE(volume_.contains("/Library/link"));
        EXPECT_TRUE(volume_.contains("/Volumes/Data/kept"));
    }
    EXPECT_TRUE(volume_.contains("/Users/sample/.Trash/link"));
}

TEST_F(AppRemovalServiceTest, NamesOfAnyBytesAreRemovedLikeOthers) {
    Items items;
    for (const auto* const name : {"-rf", "it's", "a\nb", "\xff\xfe", "100%41", "\"", " "}) {
        items.push_back(madeItem(std::string("/Library/Application Support/") + name));
    }
    const auto result = deletePermanently(items);

    EXPECT_THAT(result.removed, SizeIs(items.size()));
    for (const auto& item : items) EXPECT_FALSE(volume_.contains(item.id())) << item.id();
}

TEST_F(AppRemovalServiceTest, WhatNamesNoFileIsDropped) {
    RelatedItem relative;
    relative.url = FileURL::fromString("Library/a").value();
    const auto result = deletePermanently({relative, RelatedItem{}});

    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed, IsEmpty());
}

TEST_F(AppRemovalServiceTest, AFailureOfTheUsersRightsIsRetriedAndNeverToldInItsOwnWords) {
    // A Trash that is none fails every move, for root too.
    fs::remove(volume_.machinePath("/Users/sample/.Trash"));
    volume_.makeFile("/Users/sample/.Trash");
    const auto doomed = madeItem("/Library/a");
    runner_.setBehaviour([](const PrivilegedRequest&) {
        return PrivilegedOutcome{{}, 1, "the prompt's", {}};
    });

    const auto result = moveToTrash({doomed});

    EXPECT_THAT(privilegedSources(), ElementsAre("/Library/a"));
    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed, ElementsAre(Failure{doomed.url, "the prompt's"}));
}

TEST_F(AppRemovalServiceTest, TheBatchIsTheAdministratorsItemsAndThenWhatFailed) {
    const auto a = madeItem("/Applications/A.app/Contents/Info.plist");
    const auto b = madeAdministratorItem("/Library/b");
    const auto c = madeItem("/Library/Locked/c");
    const auto d = madeItem("/Applications/D.app/Contents/Info.plist");
    const auto e = madeAdministratorItem("/Library/e");
    volume_.giveEverythingToUnprivilegedUser();
    fs::permissions(volume_.machinePath("/Library/Locked"), fs::perms::owner_read | fs::perms::owner_exec);

    test::asUnprivilegedUser([&] {
        const auto result = deletePermanently({a, b, c, item("/Library/gone"), d, e});
        EXPECT_THAT(privilegedSources(), ElementsAre(b.id(), e.id(), c.id()));
        EXPECT_THAT(result.removed, ElementsAre(a.url, d.url));
        EXPECT_THAT(result.failed, ElementsAre(Failure{b.url, stillExists}, Failure{e.url, stillExists},
                                               Failure{c.url, stillExists}));
    });
}

TEST_F(AppRemovalServiceTest, PrivilegedSuccessesFollowTheUsersOwn) {
    letTheCommandsSucceed();
    const auto b = madeAdministratorItem("/Library/b");
    const auto a = madeItem("/Library/a");

    const auto result = deletePermanently({b, a});

    EXPECT_THAT(result.removed, ElementsAre(a.url, b.url));
    EXPECT_THAT(result.failed, IsEmpty());
}

TEST_F(AppRemovalServiceTest, AProtectedFolderFailsWithAReasonAndNothingIsTried) {
    volume_.makeFile("/Users/sample/Library/Caches/com.example.other/kept");
    auto caches = item("/Users/sample/Library/Caches");
    const auto before = volume_.listing();
    for (const bool requiresAdministrator : {false, true}) {
        caches.requiresAdministrator = requiresAdministrator;
        for (const auto& result : {moveToTrash({caches}), deletePermanently({caches})}) {
            EXPECT_THAT(result.removed, IsEmpty());
            EXPECT_THAT(result.failed, ElementsAre(Failure{caches.url, isProtected}));
        }
    }
    EXPECT_THAT(runner_.runs(), IsEmpty());
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(AppRemovalServiceTest, APathThatClimbsFailsWithAReasonAndNothingIsTried) {
    volume_.makeFile("/Users/sample/Documents/letter");
    volume_.makeDirectory("/Users/sample/Library/Caches");
    auto documents = item("/Users/sample/Library/Caches/../../Documents");
    const auto before = volume_.listing();
    for (const bool requiresAdministrator : {false, true}) {
        documents.requiresAdministrator = requiresAdministrator;
        for (const auto& result : {moveToTrash({documents}), deletePermanently({documents})}) {
            EXPECT_THAT(result.removed, IsEmpty());
            ASSERT_THAT(result.failed, SizeIs(1));
            EXPECT_EQ(result.failed.front().url, documents.url);
            EXPECT_NE(result.failed.front().reason, "");
        }
    }
    EXPECT_THAT(runner_.runs(), IsEmpty());
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(AppRemovalServiceTest, ProtectedFoldersAreTheFirstFailuresAndStopNothingElse) {
    const auto theirs = madeAdministratorItem("/Library/theirs");
    const auto own = madeItem("/Users/sample/Library/Caches/own");
    const auto home = item("/Users/sample");
    const auto caches = item("/Users/sample/Library/Caches", RelatedItemKind::cache, true);

    const auto result = deletePermanently({theirs, home, own, caches});

    EXPECT_THAT(result.removed, ElementsAre(own.url));
    EXPECT_THAT(result.failed, ElementsAre(Failure{home.url, isProtected}, Failure{caches.url, isProtected},
                                           Failure{theirs.url, stillExists}));
    EXPECT_THAT(privilegedSources(), ElementsAre(theirs.id()));
}

TEST_F(AppRemovalServiceTest, CallsOfOneServiceDoNotMix) {
    asio::thread_pool pool(2);
    AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
    const auto a = madeItem("/Library/a");
    const auto b = madeItem("/Library/b");
    auto first = mainLoop_.start(service.moveToTrash({a}, {}, {}));
    auto second = mainLoop_.start(service.deletePermanently({b}, {}, {}));

    EXPECT_THAT(mainLoop_.wait(std::move(first)).removed, ElementsAre(a.url));
    EXPECT_THAT(mainLoop_.wait(std::move(second)).removed, ElementsAre(b.url));
    EXPECT_TRUE(volume_.contains("/Users/sample/.Trash/a"));
    EXPECT_FALSE(volume_.contains("/Users/sample/.Trash/b"));
}

TEST_F(AppRemovalServiceTest, WhatVanishedIsInNeitherListAlsoWhereItsPathClimbs) {
    volume_.makeDirectory("/Users/sample/Library/Caches");
    for (const auto* const path :
         {"/Users/sample/Library/Caches/gone", "/Users/sample/Library/Caches/../gone"}) {
        for (const auto& result : {moveToTrash({item(path)}), deletePermanently({item(path)})}) {
            EXPECT_THAT(result.removed, IsEmpty()) << path;
            EXPECT_THAT(result.failed, IsEmpty()) << path;
        }
    }
    EXPECT_THAT(runner_.requests(), IsEmpty());
}

TEST_F(AppRemovalServiceTest, WhatLiesInAnotherFolderThanTheOneThatWasShownIsNotTouched) {
    const auto shown = madeItem("/Users/sample/Library/Caches/a");
    const auto folder =
        volume_.files().identity(FileURL::fromPath("/Users/sample/Library/Caches", true)).value();
    std::filesystem::rename(volume_.machinePath("/Users/sample/Library/Caches"),
                            volume_.machinePath("/former"));
    madeItem("/Users/sample/Library/Caches/a");
    const auto before = volume_.listing();
    for (const bool isToTrash : {true, false}) {
        const ReviewedPlan reviewed{{}, {{shown.id(), folder}}};
        asio::thread_pool pool(2);
        AppRemovalService service(pool.get_executor(), volume_.files(), workspace_, runner_);
        const auto result = mainLoop_.run(isToTrash ? service.moveToTrash({shown}, {}, reviewed)
                                                    : service.deletePermanently({shown}, {}, reviewed));
        EXPECT_THAT(result.removed, IsEmpty());
        EXPECT_THAT(result.failed, SizeIs(1));
    }
    EXPECT_EQ(volume_.listing(), before);
    for (const auto& request : runner_.requests()) {
        EXPECT_EQ(request.items.at(0).folder, folder) << "root is told which folder was meant";
    }
}

}  // namespace
}  // namespace orvane
