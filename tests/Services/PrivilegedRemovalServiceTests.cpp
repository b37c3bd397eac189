#include "Services/PrivilegedRemovalService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <set>

#include "Platform/PrivilegedScript.h"
#include "tests/Fixtures/FailingFileManager.h"
#include "tests/Services/RemovalFixture.h"

namespace orvane {
namespace {

using test::FailingFileManager;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

using Action = PrivilegedRemovalService::Action;
using Failure = RemovalResult::Failure;
using Kind = PrivilegedRequest::Item::Kind;

class PrivilegedRemovalServiceTest : public RemovalFixture {
  protected:
    RemovalResult remove(const std::vector<RelatedItem>& items, Action action) {
        return mainLoop_.run(service_.remove(items, action));
    }

    /// What the user is told of one item when the runner ends like this.
    std::string reasonAfter(const PrivilegedOutcome& outcome) {
        runner_.setBehaviour([&](const PrivilegedRequest&) { return outcome; });
        const auto result = remove({madeItem("/Library/a")}, Action::permanent);
        EXPECT_THAT(result.removed, IsEmpty());
        EXPECT_THAT(result.failed, SizeIs(1));
        return result.failed.empty() ? "" : result.failed.front().reason;
    }

    /// Where the runner is told to move an item with this name.
    std::string destinationOf(const std::string& name) {
        remove({madeItem("/Library/" + name)}, Action::trash);
        return runner_.requests().back().items.front().destination;
    }

    asio::thread_pool pool_{2};
    PrivilegedRemovalService service_{pool_.get_executor(), volume_.files(), runner_};
};

TEST_F(PrivilegedRemovalServiceTest, AnEmptyBatchRunsNothing) {
    const auto result = remove({}, Action::trash);

    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed, IsEmpty());
    EXPECT_THAT(runner_.runs(), IsEmpty());
}

TEST_F(PrivilegedRemovalServiceTest, ADaemonGoesToTheTrashByThisVector) {
    remove({madeItem("/Library/LaunchDaemons/d.plist", RelatedItemKind::launchDaemon)}, Action::trash);

    EXPECT_THAT(runner_.runs(),
                ElementsAre(ElementsAre("-e", std::string(privilegedAppleScript()), "--", "trash", "daemon",
                                        "/Library/LaunchDaemons/d.plist", "/Users/sample/.Trash/d.plist")));
}

TEST_F(PrivilegedRemovalServiceTest, DeletingLeavesEveryDestinationEmpty) {
    remove(
        {madeItem("/Library/a"), madeItem("/Library/LaunchDaemons/d.plist", RelatedItemKind::launchDaemon)},
        Action::permanent);

    EXPECT_THAT(runner_.runs(),
                ElementsAre(ElementsAre("-e", std::string(privilegedAppleScript()), "--", "delete", "item",
                                        "/Library/a", "", "daemon", "/Library/LaunchDaemons/d.plist", "")));
}

TEST_F(PrivilegedRemovalServiceTest, OnlyALaunchDaemonIsADaemon) {
    for (const auto kind : allRelatedItemKinds) {
        remove({madeItem("/Library/a", kind)}, Action::permanent);
        EXPECT_EQ(runner_.requests().back().items.front().kind,
                  kind == RelatedItemKind::launchDaemon ? Kind::daemon : Kind::item)
            << rawValue(kind);
    }
}

TEST_F(PrivilegedRemovalServiceTest, ATakenNameIsCountedOnFromTwo) {
    volume_.makeDirectory("/Users/sample/.Trash/Foo.app");
    EXPECT_EQ(destinationOf("Foo.app"), "/Users/sample/.Trash/Foo 2.app");
    volume_.makeDirectory("/Users/sample/.Trash/Foo 2.app");
    EXPECT_EQ(destinationOf("Foo.app"), "/Users/sample/.Trash/Foo 3.app");
}

TEST_F(PrivilegedRemovalServiceTest, TheCountStandsBeforeTheExtension) {
    const std::vector<std::pair<std::string, std::string>> names{
        {"com.example.foo", "com.example 2.foo"},
        {"Caches", "Caches 2"},
        {".hidden", ".hidden 2"},
        {"it's a \"name\".plist", "it's a \"name\" 2.plist"},
        {"100%41.app", "100%41 2.app"},
        {"\xff\xfe.app", "\xff\xfe 2.app"},
    };
    for (const auto& [name, second] : names) {
        volume_.makeFile("/Users/sample/.Trash/" + name);
        EXPECT_EQ(destinationOf(name), "/Users/sample/.Trash/" + second);
    }
}

TEST_F(PrivilegedRemovalServiceTest, ADanglingLinkInTheTrashIsNotReplaced) {
    volume_.makeLink("/Users/sample/.Trash/a", "/nowhere");
    EXPECT_EQ(destinationOf("a"), "/Users/sample/.Trash/a 2");
}

TEST_F(PrivilegedRemovalServiceTest, WhereTheTrashCannotBeLookedAtNothingInItIsReplaced) {
    FailingFileManager files(volume_.files());
    PrivilegedRemovalService service(pool_.get_executor(), files, runner_);
    runner_.setBehaviour([this](const PrivilegedRequest& request) { return carryOut(request); });
    std::set<std::string> destinations;
    for (const auto* const name : {"/a/Foo.app", "/b/Foo.app", "/c/Foo.app"}) {
        files.failCall(files.calls().size(), FailingFileManager::Fault::before);
        const auto result =
            mainLoop_.run(service.remove({madeItem(std::string("/Library") + name)}, Action::trash));
        EXPECT_THAT(result.removed, SizeIs(1));
        destinations.insert(runner_.requests().back().items.front().destination);
    }

    EXPECT_THAT(destinations, SizeIs(3));
    EXPECT_THAT(destinations, Each(MatchesRegex("/Users/sample/.Trash/Foo [0-9]{19,20}.app")));
    EXPECT_THAT(volume_.files().contentsOfDirectory(url("/Users/sample/.Trash"), {}).value(), SizeIs(3));
}

TEST_F(PrivilegedRemovalServiceTest, NamesHandedOutInOneBatchAreNotReserved) {
    remove({madeItem("/Library/a/same"), madeItem("/Library/b/same")}, Action::trash);

    const auto items = runner_.requests().front().items;
    ASSERT_THAT(items, SizeIs(2));
    EXPECT_EQ(items[0].destination, "/Users/sample/.Trash/same");
    EXPECT_EQ(items[1].destination, "/Users/sample/.Trash/same");
}

TEST_F(PrivilegedRemovalServiceTest, HostileNamesAreHandedOnAsTheyAre) {
    const std::string path = "/Library/-it's \"a\"\n$(name) \xff";
    remove({madeItem(path)}, Action::permanent);
    EXPECT_EQ(runner_.requests().front().items.front().source, path);
}

TEST_F(PrivilegedRemovalServiceTest, TheWholeBatchIsOneRunAndTheDiskDecides) {
    runner_.setBehaviour([this](const PrivilegedRequest& request) {
        auto allButTheSecond = request;
        allButTheSecond.items.erase(allButTheSecond.items.begin() + 1);
        return carryOut(allButTheSecond);
    });

    const auto result =
        remove({madeItem("/Library/a"), madeItem("/Library/b"), madeItem("/Library/c")}, Action::trash);

    EXPECT_THAT(runner_.runs(), SizeIs(1));
    EXPECT_THAT(result.removed, ElementsAre(url("/Library/a"), url("/Library/c")));
    EXPECT_THAT(result.failed, ElementsAre(Failure{url("/Library/b"), stillExists}));
}

TEST_F(PrivilegedRemovalServiceTest, WhatWasGoneAlreadyCountsAsRemoved) {
    const auto result = remove({item("/Library/gone")}, Action::permanent);

    EXPECT_THAT(result.removed, ElementsAre(url("/Library/gone")));
    EXPECT_THAT(result.failed, IsEmpty());
}

TEST_F(PrivilegedRemovalServiceTest, AFailedRunFailsEveryItemWhateverTheDiskSays) {
    runner_.setBehaviour([this](const PrivilegedRequest& request) {
        carryOut(request);
        return PrivilegedOutcome{{}, 1, "mv: no\n", {}};
    });

    const auto result = remove({madeItem("/Library/a"), madeItem("/Library/b")}, Action::trash);

    EXPECT_THAT(result.removed, IsEmpty());
    EXPECT_THAT(result.failed,
                ElementsAre(Failure{url("/Library/a"), "mv: no"}, Failure{url("/Library/b"), "mv: no"}));
}

TEST_F(PrivilegedRemovalServiceTest, ARunnerThatCannotBeLaunchedSaysWhy) {
    EXPECT_EQ(reasonAfter({"No such file or directory", 0, "", {}}), "No such file or directory");
}

TEST_F(PrivilegedRemovalServiceTest, ACancelledPromptIsToldInTheRunnersOwnWords) {
    EXPECT_EQ(reasonAfter({{}, 1, "0:10: execution error: User canceled. (-128)\n", {}}),
              "0:10: execution error: User canceled. (-128)");
}

TEST_F(PrivilegedRemovalServiceTest, WhiteSpaceOfEveryKindIsTrimmedAtTheEndsOnly) {
    EXPECT_EQ(reasonAfter(
                  {{}, 1, "\r\n \t\v\f\xc2\x85\xc2\xa0\xe2\x80\xa8not\n now\xe3\x80\x80\xe2\x80\x89\n", {}}),
              "not\n now");
    EXPECT_EQ(reasonAfter({{}, 1, "caf\xc3\xa9", {}}), "caf\xc3\xa9");
}

TEST_F(PrivilegedRemovalServiceTest, AnEmptyStandardErrorMeansNotGranted) {
    for (const auto* const nothing : {"", "\n", " \t\r\n\xc2\xa0"}) {
        EXPECT_EQ(reasonAfter({{}, 1, nothing, {}}), "Administrator permission was not granted.");
    }
}

TEST_F(PrivilegedRemovalServiceTest, AStandardErrorThatIsNoTextMeansNotGranted) {
    EXPECT_EQ(reasonAfter({{}, 127, "mv: \xff\xfe: no", {}}), "Administrator permission was not granted.");
}

TEST_F(PrivilegedRemovalServiceTest, StandardErrorOfASuccessIsOfNoConcern) {
    runner_.setBehaviour([this](const PrivilegedRequest& request) {
        carryOut(request);
        return PrivilegedOutcome{{}, 0, "chown: no\n", {}};
    });
    const auto result = remove({madeItem("/Library/a")}, Action::trash);
    EXPECT_THAT(result.removed, ElementsAre(url("/Library/a")));
    EXPECT_THAT(result.failed, IsEmpty());
}

TEST_F(PrivilegedRemovalServiceTest, WhyAnItemWasLeftIsAddedToItsReason) {
    runner_.setBehaviour([](const PrivilegedRequest&) {
        return PrivilegedOutcome{{}, 0, {}, {"", "A disk is mounted in it.", "of what is gone"}};
    });
    RelatedItem relative;
    relative.url = FileURL::fromString("Library/a").value();

    const auto result = remove({madeItem("/Library/a"), relative, madeItem("/Library/b"),
                                item("/Library/gone"), madeItem("/Library/c")},
                               Action::permanent);

    EXPECT_THAT(result.failed, ElementsAre(Failure{url("/Library/a"), stillExists},
                                           Failure{url("/Library/b"),
                                                   std::string(stillExists) + " A disk is mounted in it."},
                                           Failure{url("/Library/c"), stillExists}));
}

TEST_F(PrivilegedRemovalServiceTest, WhatNamesNoFileIsNotHandedOn) {
    RelatedItem relative;
    relative.url = FileURL::fromString("Library/a").value();
    RelatedItem foreign;
    foreign.url = FileURL::fromString("https://example.org/Library/a").value();

    remove({relative, foreign, RelatedItem{}}, Action::permanent);
    EXPECT_THAT(runner_.runs(), IsEmpty());

    remove({relative, madeItem("/Library/a"), foreign}, Action::permanent);
    EXPECT_THAT(runner_.requests().front().items,
                ElementsAre(PrivilegedRequest::Item{Kind::item, "/Library/a", ""}));
}

}  // namespace
}  // namespace orvane
