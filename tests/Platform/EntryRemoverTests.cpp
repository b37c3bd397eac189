#include "Platform/EntryRemover.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/FileManager.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

/// Three files of one folder, which one remover takes one after the other, while others change the disk.
class EntryRemoving {
  protected:
    EntryRemoving() {
        for (const auto* const name : {"a", "b", "c"}) mac_.makeFile(folder_ + "/" + name, name);
        mac_.makeDirectory(TestVolume::trash());
        remover_ = mac_.files().makeEntryRemover();
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }
    void rename(const std::string& from, const std::string& to) const { fs::rename(at(from), at(to)); }
    std::vector<std::string> namesIn(const std::string& path) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(at(path))) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    Result<EntryFacts> look(const std::string& path) { return remover_->look(url(path)); }
    /// The number of the error, or 0.
    int trash(const std::string& path, const std::optional<FileIdentity>& folder = {}) {
        const auto moved =
            look(path).and_then([&](const EntryFacts&) { return remover_->moveToTrash(folder); });
        return moved ? 0 : moved.error().value();
    }
    int trashFromFolder(const char* name) { return trash(folder_ + "/" + name, shown_); }
    /// Nothing of what is there is moved by that, and it fails so.
    void expectFailure(const std::string& path, int error) {
        const auto before = mac_.listing();
        EXPECT_EQ(trash(path, shown_), error) << path;
        EXPECT_EQ(mac_.listing(), before);
    }

    TestVolume mac_;
    const std::string parent_ = TestVolume::home() + "/Library/Maker";
    const std::string folder_ = parent_ + "/Foo";
    const std::optional<FileIdentity> shown_ = [this] {
        mac_.makeDirectory(folder_);
        return std::optional(mac_.files().identity(url(folder_)).value());
    }();
    std::unique_ptr<EntryRemover> remover_;
};

PRIVATE_MOUNTS_TEST(EntryRemoving, TakesTheEntriesOfAFolderAndNoOthers) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    EXPECT_EQ(trashFromFolder("b"), 0);
    EXPECT_THAT(namesIn(folder_), UnorderedElementsAre("c"));
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("a", "b"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, GoesFromFolderToFolderAndBack) {
    mac_.makeFile("/Applications/a");
    mac_.makeFile("/Applications/b");
    for (const auto& path : {folder_ + "/a", std::string("/Applications/a"), folder_ + "/b",
                             std::string("/Applications/b"), folder_}) {
        EXPECT_EQ(trash(path), 0) << path;
        EXPECT_FALSE(mac_.contains(path));
    }
    expectFailure(TestVolume::trash() + "/Foo/c", EINVAL);
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("a", "a 2", "b", "b 2", "Foo"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, TellsWhatAnEntryIsAndWhereItLies) {
    mac_.makeLink(folder_ + "/link", "nothing");
    mac_.makeLink("/way", folder_);
    const auto file = look(folder_ + "/a").value();
    EXPECT_EQ(file.identity, mac_.files().identity(url(folder_ + "/a")).value());
    EXPECT_EQ(file.folder, shown_);
    EXPECT_FALSE(file.isSymbolicLink);
    EXPECT_TRUE(file.isReachedDirectly);
    EXPECT_TRUE(look(folder_ + "/link")->isSymbolicLink);
    EXPECT_TRUE(look(folder_ + "/link")->isReachedDirectly) << "it is itself one; none is on its way";
    EXPECT_EQ(look("/way/a")->identity, file.identity);
    EXPECT_EQ(look("/way/a")->folder, shown_);
    EXPECT_FALSE(look("/way/a")->isReachedDirectly);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, WhatIsNoEntryIsSeenAndStays) {
    for (const auto& path : {std::string("/"), folder_ + "/.", folder_ + "/.."}) {
        ASSERT_TRUE(look(path)) << path;
        EXPECT_EQ(look(path)->identity, mac_.files().identity(url(path)).value());
        expectFailure(path, EINVAL);
        EXPECT_EQ(remover_->remove({}, alone).error(), std::errc::invalid_argument);
    }
    EXPECT_EQ(look(folder_ + "/..")->folder,
              mac_.files().identity(url(TestVolume::home() + "/Library")).value());
}

PRIVATE_MOUNTS_TEST(EntryRemoving, NothingGoesThatWasNotFound) {
    EXPECT_EQ(remover_->moveToTrash({}).error(), std::errc::invalid_argument) << "nothing was looked at";
    ASSERT_TRUE(look(folder_ + "/a"));
    for (const auto& path : {folder_ + "/missing", std::string("/missing/a")}) {
        EXPECT_EQ(look(path).error(), std::errc::no_such_file_or_directory);
        EXPECT_EQ(remover_->moveToTrash({}).error(), std::errc::invalid_argument);
        EXPECT_EQ(remover_->remove({}, alone).error(), std::errc::invalid_argument);
    }
    EXPECT_THAT(namesIn(folder_), UnorderedElementsAre("a", "b", "c"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AnEntryOfAnotherFolderThanTheOneGivenStays) {
    mac_.makeFile("/Applications/a");
    expectFailure("/Applications/a", ESTALE);
    ASSERT_TRUE(look("/Applications/a"));
    EXPECT_EQ(remover_->remove(shown_, alone).error().value(), ESTALE);
    EXPECT_TRUE(mac_.contains("/Applications/a"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AFolderThatIsMovedAwayGivesNothingMoreUp) {
    const std::string elsewhere = TestVolume::home() + "/elsewhere";
    for (const auto& [from, to] : std::map<std::string, std::string>{
             {folder_, elsewhere}, {parent_, elsewhere}, {TestVolume::home() + "/Library", "/Library"}}) {
        EXPECT_EQ(trashFromFolder("a"), 0);
        rename(from, to);
        expectFailure(folder_ + "/b", ENOENT);
        rename(to, from);
        rename(TestVolume::trash() + "/a", folder_ + "/a");
    }
    EXPECT_EQ(trashFromFolder("b"), 0) << "it is back";
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AFolderThatIsMovedIntoTheTrashGivesNothingMoreUp) {
    for (const auto& moved : {folder_, parent_}) {
        EXPECT_EQ(trashFromFolder("a"), 0);
        rename(moved, TestVolume::trash() + "/moved");
        expectFailure(folder_ + "/b", ENOENT);
        // Not even where a link leads after it.
        mac_.makeLink(moved, TestVolume::trash() + "/moved");
        EXPECT_FALSE(look(folder_ + "/b")->isReachedDirectly);
        expectFailure(folder_ + "/b", EINVAL);
        fs::remove(at(moved));
        rename(TestVolume::trash() + "/moved", moved);
        rename(TestVolume::trash() + "/a", folder_ + "/a");
    }
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AFolderInThePlaceOfALinkToItLiesWhereTheLinkLay) {
    const auto place = TestVolume::trash() + "/link";
    mac_.makeLink(place, folder_);
    EXPECT_EQ(trash(place + "/a"), 0);
    fs::remove(at(place));
    rename(folder_, place);
    expectFailure(place + "/b", EINVAL);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, ALinkInThePlaceOfAFolderIsSeenAndLeadsToNoOther) {
    mac_.makeFile("/Users/sample/Documents/Foo/b", "precious");
    for (const auto& [place, target] : std::map<std::string, std::string>{
             {folder_, "/Users/sample/Documents/Foo"}, {parent_, "/Users/sample/Documents"}}) {
        EXPECT_EQ(trashFromFolder("a"), 0);
        rename(place, "/moved");
        mac_.makeLink(place, target);
        EXPECT_FALSE(look(folder_ + "/b")->isReachedDirectly);
        expectFailure(folder_ + "/b", ESTALE);
        fs::remove(at(place));
        mac_.makeLink(place, "/moved");
        EXPECT_FALSE(look(folder_ + "/b")->isReachedDirectly) << "though it leads to the same folder";
        fs::remove(at(place));
        rename("/moved", place);
        rename(TestVolume::trash() + "/a", folder_ + "/a");
    }
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AnotherFolderInThePlaceOfTheFirstIsAnotherOne) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    rename(folder_, "/moved");
    mac_.makeFile(folder_ + "/b", "precious");
    EXPECT_NE(look(folder_ + "/b")->folder, shown_);
    expectFailure(folder_ + "/b", ESTALE);
    EXPECT_EQ(trash(folder_ + "/b"), 0) << "whatever the folder";
    EXPECT_EQ(readFile(at(TestVolume::trash() + "/b")), "precious");
    EXPECT_THAT(namesIn("/moved"), UnorderedElementsAre("b", "c"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, ATrashThatIsMovedAwayTakesNothingMore) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    rename(TestVolume::trash(), TestVolume::home() + "/former");
    EXPECT_EQ(trashFromFolder("b"), 0);
    EXPECT_THAT(namesIn(TestVolume::home() + "/former"), UnorderedElementsAre("a"));
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("b")) << "a new one has been made";
}

PRIVATE_MOUNTS_TEST(EntryRemoving, ATrashThatIsRemovedIsMadeAnew) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    fs::remove_all(at(TestVolume::trash()));
    EXPECT_EQ(trashFromFolder("b"), 0);
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("b"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, ALinkInThePlaceOfTheTrashTakesNothing) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    rename(TestVolume::trash(), TestVolume::home() + "/former");
    mac_.makeLink(TestVolume::trash(), "former");
    expectFailure(folder_ + "/b", ENOTDIR);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, ATrashThatBecomesSomebodyElsesTakesNothingMore) {
    if (!isRoot()) GTEST_SKIP() << "only root can make folders of somebody else";
    EXPECT_EQ(trashFromFolder("a"), 0);
    giveToUnprivilegedUser(at(TestVolume::trash()));
    expectFailure(folder_ + "/b", EACCES);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AHomeThatTookTheFoldersOfAnotherHasItsOwnTrash) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    rename(TestVolume::home(), "/Users/former");
    mac_.makeDirectory(TestVolume::home());
    rename("/Users/former/Library", TestVolume::home() + "/Library");
    EXPECT_EQ(trashFromFolder("b"), 0);
    EXPECT_THAT(namesIn("/Users/former/.Trash"), UnorderedElementsAre("a"));
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("b"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AHomeThatIsMovedTakesItsTrashWithIt) {
    mac_.makeFile("/Applications/a");
    mac_.makeFile("/Applications/b");
    EXPECT_EQ(trash("/Applications/a"), 0);
    rename(TestVolume::home(), "/Users/former");
    EXPECT_EQ(trash("/Applications/b"), ENOENT) << "there is no home any more";
    mac_.makeDirectory(TestVolume::home());
    EXPECT_EQ(trash("/Applications/b"), 0);
    EXPECT_THAT(namesIn(TestVolume::trash()), UnorderedElementsAre("b"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AHomeThatALinkLeadsToHasItsTrashAllTheSame) {
    rename(TestVolume::home(), "/Volumes");
    mac_.makeLink(TestVolume::home(), "/Volumes");
    EXPECT_EQ(trashFromFolder("a"), 0);
    EXPECT_EQ(trashFromFolder("b"), 0);
    EXPECT_THAT(namesIn("/Volumes/.Trash"), UnorderedElementsAre("a", "b"));
}

PRIVATE_MOUNTS_TEST(EntryRemoving, DeletesFromTheFolderThatItIsIn) {
    EXPECT_EQ(trashFromFolder("a"), 0);
    ASSERT_TRUE(look(folder_ + "/b"));
    rename(folder_, "/moved");
    mac_.makeFile(folder_ + "/b", "precious");
    EXPECT_TRUE(remover_->remove(shown_, alone));
    EXPECT_THAT(namesIn("/moved"), UnorderedElementsAre("c")) << "where it was seen";
    EXPECT_EQ(readFile(at(folder_ + "/b")), "precious");
}

PRIVATE_MOUNTS_TEST(EntryRemoving, KeepsAHandfulOfDescriptorsHoweverManyFolders) {
    const auto open = [] {
        const fs::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    };
    const auto before = open();
    for (int i = 0; i < 50; ++i) {
        const auto path = parent_ + "/" + std::to_string(i) + "/file";
        mac_.makeFile(path);
        EXPECT_EQ(trash(path), 0);
    }
    EXPECT_LE(open(), before + 2);
    remover_.reset();
    EXPECT_EQ(open(), before);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, WhatIsKnownOfAFolderAndOfTheTrashIsNotFoundOutTwice) {
    mac_.makeDirectory(folder_ + "/folder");
    std::size_t steps = 0;
    const auto stepsFor = [&](const std::string& path) {
        steps = 0;
        onCue(
            {SYS_openat},
            [&](const PendingCall& call) {
                if (call.text(1) == "..") ++steps;
                return proceed;
            },
            [&] { EXPECT_EQ(trash(path), 0); });
        return steps;
    };
    EXPECT_GE(stepsFor(folder_ + "/a"), 5U) << "the way up from the folder";
    EXPECT_EQ(stepsFor(folder_ + "/b"), 0U);
    EXPECT_GE(stepsFor(folder_ + "/folder"), 4U) << "the way up from the Trash";
    mac_.makeDirectory(folder_ + "/folder");
    EXPECT_EQ(stepsFor(folder_ + "/folder"), 0U);
}

PRIVATE_MOUNTS_TEST(EntryRemoving, AFileCostsAHandfulOfCallsOnceItsFolderIsKnown) {
    const auto callsFor = [&](const std::string& path) {
        std::size_t calls = 0;
        onCue(
            {SYS_open, SYS_openat, SYS_openat2, SYS_stat, SYS_lstat, SYS_fstat, SYS_newfstatat, SYS_statx,
             SYS_renameat2},
            [&](const PendingCall&) {
                ++calls;
                return proceed;
            },
            [&] { EXPECT_EQ(trash(path), 0); });
        return calls;
    };
    EXPECT_GT(callsFor(folder_ + "/a"), 20U);
    EXPECT_LE(callsFor(folder_ + "/b"), 6U);
}

}  // namespace
}  // namespace orvane::test
