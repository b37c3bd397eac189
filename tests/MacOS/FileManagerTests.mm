#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "Platform/Posix/DirectoryReader.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

class MacFilesTest : public MacFixture {
  protected:
    FileDescriptor open(const std::string& path, int flags = searchFlags) const {
        return FileDescriptor(::open(at(path).c_str(), flags | O_CLOEXEC));
    }
    template <typename T>
    static int error(const Result<T>& result) {
        return result ? 0 : result.error().value();
    }
    std::vector<std::string> names(DirectoryReader& reader) const {
        std::vector<std::string> all;
        while (const auto entry = reader.next()) all.emplace_back(entry->name);
        return all;
    }
    DirectoryReader readerOf(const std::string& folder) const {
        DirectoryReader reader;
        reader.read(open(folder, O_RDONLY | O_DIRECTORY));
        return reader;
    }
    void setFlags(const std::string& path, int flags) const {
        struct stat status {};
        ASSERT_EQ(::lstat(at(path).c_str(), &status), 0);
        systemCallState().flags[{status.st_dev, status.st_ino}] = static_cast<unsigned>(flags);
    }
};

PRIVATE_MOUNTS_TEST(MacFilesTest, WhatMayNotBeReadIsThereAllTheSame) {
    directory_.makeFile("file");
    ASSERT_EQ(::chmod(at("file").c_str(), 0), 0);
    EXPECT_TRUE(files_->fileExists(url("file")));
    EXPECT_TRUE(files_->identity(url("file")));
    directory_.makeLink("dangling", "nowhere");
    EXPECT_FALSE(files_->fileExists(url("dangling")));
    EXPECT_TRUE(files_->entryExists(url("dangling")));
    EXPECT_FALSE(files_->entryExists(url("nowhere")));
}

PRIVATE_MOUNTS_TEST(MacFilesTest, ReadsRegularFilesOnly) {
    directory_.makeFile("file", "contents");
    directory_.makeLink("link", "file");
    directory_.makeFIFO("fifo");
    EXPECT_EQ(files_->contents(url("file"), 100).value(), "contents");
    EXPECT_EQ(files_->contents(url("link"), 100).value(), "contents");
    EXPECT_EQ(error(files_->contents(url("file"), 7)), EFBIG);
    EXPECT_EQ(error(files_->contents(url("fifo"), 100)), EINVAL);
    EXPECT_EQ(error(files_->contents(url("Users"), 100)), EINVAL);
    EXPECT_EQ(error(files_->contents(url("nowhere"), 100)), ENOENT);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, ListsNamesByteForByte) {
    for (const auto& name : awkwardNames) directory_.makeDirectory("Applications/" + name);
    directory_.makeFile("Applications/file");
    directory_.makeLink("Applications/link", at("Users"));
    std::vector<std::string> folders;
    std::vector<std::string> others;
    const auto entries = files_->contentsOfDirectory(url("Applications"), {});
    ASSERT_TRUE(entries);
    for (const auto& entry : *entries)
        (entry.isDirectory ? folders : others).push_back(entry.url.lastPathComponent());
    EXPECT_THAT(folders, UnorderedElementsAreArray(awkwardNames));
    EXPECT_THAT(others, UnorderedElementsAre("file", "link"));
}

PRIVATE_MOUNTS_TEST(MacFilesTest, AFolderThatIsTakenUpAgainGoesOnWhereItWas) {
    for (int i = 0; i < 500; ++i) directory_.makeFile("many/" + std::to_string(i));
    auto reader = readerOf("many");
    std::vector<std::string> all{std::string(reader.next()->name)};
    auto remaining = reader.takeRemaining();
    EXPECT_FALSE(reader.next());
    DirectoryReader second;
    second.resume(reader.release(), std::move(remaining));
    std::ranges::copy(names(second), std::back_inserter(all));
    std::ranges::sort(all);
    EXPECT_EQ(all.size(), 500U);
    EXPECT_TRUE(std::ranges::adjacent_find(all) == all.end());
}

PRIVATE_MOUNTS_TEST(MacFilesTest, WhatIsRemovedMeanwhileHidesNothing) {
    for (int i = 0; i < 2000; ++i) directory_.makeFile("many/" + std::to_string(i));
    auto reader = readerOf("many");
    int removed = 0;
    while (const auto entry = reader.next()) {
        removed += ::unlinkat(reader.folder(), entry->name.data(), 0) == 0 ? 1 : 0;
    }
    EXPECT_EQ(removed, 2000);
    DirectoryReader again;
    again.read(reader.release());
    EXPECT_THAT(names(again), IsEmpty()) << "from the first entry on, whoever has read before";
}

PRIVATE_MOUNTS_TEST(MacFilesTest, AFolderThatIsGoneIsEmptyAndAFileIsAnError) {
    directory_.makeDirectory("gone");
    auto reader = readerOf("gone");
    std::filesystem::remove(at("gone"));
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.error());
    directory_.makeFile("file");
    DirectoryReader none;
    none.read(open("file", O_RDONLY));
    EXPECT_FALSE(none.next());
    EXPECT_EQ(none.error().value(), ENOTDIR);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, RemovesATreeOfAnyDepthAndNoLinksTarget) {
    directory_.makeFile("elsewhere/precious");
    std::string path = "tree";
    for (int i = 0; i < 200; ++i) {
        path += "/d";
        directory_.makeFile(path + "/file");
        directory_.makeLink(path + "/link", at("elsewhere"));
    }
    EXPECT_TRUE(removeItem(*files_, url("tree")));
    EXPECT_FALSE(isThere("tree"));
    EXPECT_TRUE(isThere("elsewhere/precious"));
    directory_.makeLink("link", "elsewhere");
    EXPECT_TRUE(removeItem(*files_, url("link")));
    EXPECT_TRUE(isThere("elsewhere/precious"));
}

PRIVATE_MOUNTS_TEST(MacFilesTest, RemovesFoldersOfOnesOwnThatMayNotBeWritten) {
    directory_.makeFile("tree/locked/file");
    directory_.makeFile("tree/search/file");
    ASSERT_EQ(::chmod(at("tree/locked").c_str(), 0500), 0);
    ASSERT_EQ(::chmod(at("tree/search").c_str(), 0100), 0);
    EXPECT_TRUE(removeItem(*files_, url("tree")));
    EXPECT_FALSE(isThere("tree"));
}

constexpr auto withThree = [](FunctionRef<void()> work) { withHelpers(3, work); };

PRIVATE_MOUNTS_TEST(MacFilesTest, MeasuresTreesWithoutWhatTheirLinksLeadTo) {
    directory_.makeFile("tree/a", std::string(5000, 'x'));
    directory_.makeFile("tree/sub/b");
    directory_.makeFile("elsewhere/large", std::string(500'000, 'x'));
    directory_.makeLink("tree/link", at("elsewhere"));
    const auto blocks = [&](const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(at(path).c_str(), &status), 0);
        return std::int64_t{status.st_blocks} * 512;
    };
    const auto sizes = files_->allocatedSizes({url("tree"), url("tree/link"), url("nowhere")}, {}, withThree);
    ASSERT_EQ(sizes.size(), 3U);
    EXPECT_EQ(sizes[0].fileAllocatedSize, blocks("tree/a") + blocks("tree/sub/b"));
    EXPECT_EQ(sizes[1].fileAllocatedSize, 0);
    EXPECT_EQ(sizes[2].fileAllocatedSize, 0);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, SeveralThreadsRemoveATreeAndNoLinksTarget) {
    directory_.makeFile("elsewhere/precious");
    for (int i = 0; i < 40; ++i) {
        const auto folder = "tree/" + std::to_string(i) + "/sub";
        directory_.makeFile(folder + "/file");
        directory_.makeLink(folder + "/link", at("elsewhere"));
    }
    EXPECT_TRUE(removeItem(*files_, url("tree"), std::nullopt, withThree));
    EXPECT_FALSE(isThere("tree"));
    EXPECT_TRUE(isThere("elsewhere/precious"));
}

PRIVATE_MOUNTS_TEST(MacFilesTest, WhatIsLockedCannotBeDeleted) {
    directory_.makeFile("folder/file");
    EXPECT_TRUE(files_->isDeletableFile(url("folder/file")));
    for (const auto flag : {UF_IMMUTABLE, SF_IMMUTABLE, UF_APPEND, SF_APPEND, SF_NOUNLINK, SF_RESTRICTED}) {
        setFlags("folder/file", flag);
        EXPECT_FALSE(files_->isDeletableFile(url("folder/file"))) << flag;
    }
    setFlags("folder/file", 0);
    setFlags("folder", UF_APPEND);
    EXPECT_FALSE(files_->isDeletableFile(url("folder/file")));
    EXPECT_FALSE(files_->isDeletableFile(FileURL::fromPath("/proc", false))) << "something is mounted there";
}

PRIVATE_MOUNTS_TEST(MacFilesTest, ASaveReachesTheDiskItself) {
    EXPECT_TRUE(files_->writeAtomically("saved", url("file")));
    EXPECT_EQ(systemCallState().fullFlushes, 2) << "the file, and the folder with its name";
    for (const int unknown : {ENOTSUP, EINVAL, ENOTTY}) {
        systemCallState().fullFlushError = unknown;
        EXPECT_TRUE(files_->writeAtomically("again", url("file"))) << "a disk that knows no such flush";
    }
    systemCallState().fullFlushError = EIO;
    EXPECT_EQ(error(files_->writeAtomically("lost", url("file"))), EIO);
    EXPECT_EQ(readFile(at("file")), "again");
    EXPECT_EQ(files_->contentsOfDirectory(directory_.path().empty() ? url("") : url("."), {})->size(), 3U)
        << "nothing is left beside it";
}

PRIVATE_MOUNTS_TEST(MacFilesTest, ModificationTimesKeepTheirFraction) {
    directory_.makeFile("file");
    const timespec times[] = {{0, UTIME_OMIT}, {1'000'000'000, 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, at("file").c_str(), times, 0), 0);
    const auto date = files_->resourceValues(url("file"))->contentModificationDate;
    EXPECT_EQ(date.timeIntervalSinceReferenceDate, 1'000'000'000.25 - 978'307'200);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, ANameThatIsTakenIsNotReplaced) {
    directory_.makeFile("a", "a");
    directory_.makeFile("b", "b");
    const auto folder = open(".");
    EXPECT_FALSE(renameExclusively(folder.get(), "a", folder.get(), "b"));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(renameExclusively(folder.get(), "a", folder.get(), "c"));
    EXPECT_EQ(readFile(at("b")), "b");
}

PRIVATE_MOUNTS_TEST(MacFilesTest, AnotherMountAndALinkAreNotEntered) {
    directory_.makeDirectory("folder/sub");
    directory_.makeLink("link", "folder");
    const auto here = open(".");
    EXPECT_TRUE(openOnSameMount(here.get(), "folder/sub", searchFlags));
    EXPECT_FALSE(openOnSameMount(here.get(), "link", searchFlags));
    EXPECT_EQ(errno, ELOOP);
    EXPECT_FALSE(openOnSameMount(here.get(), "link/sub", searchFlags));
    EXPECT_EQ(errno, ELOOP);
    const FileDescriptor root(::open("/", searchFlags));
    EXPECT_FALSE(openOnSameMount(root.get(), "proc", searchFlags));
    EXPECT_EQ(errno, EXDEV);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, AFoldersNameIsTheOneThatItHasNow) {
    directory_.makeDirectory("first");
    directory_.makeLink("link", "first");
    const auto folder = open("link");
    EXPECT_EQ(realPath(folder.get()), at("first"));
    std::filesystem::rename(at("first"), at("second"));
    EXPECT_EQ(realPath(folder.get()), at("second"));
    std::filesystem::remove(at("second"));
    EXPECT_EQ(error(realPath(folder.get())), ENOENT);
}

PRIVATE_MOUNTS_TEST(MacFilesTest, NoOtherFolderServesAsTheRoot) {
    EXPECT_EQ(error(Volume::open(at("Users"))), ENOSYS);
    EXPECT_TRUE(Volume::open("/"));
}

}  // namespace
}  // namespace orvane::test
