#include "Platform/FileManager.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/SystemFolders.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

std::vector<std::string> names(const std::vector<DirectoryEntry>& entries) {
    std::vector<std::string> result;
    for (const auto& entry : entries) result.push_back(entry.url.lastPathComponent());
    return result;
}

TEST(FileManager, KnowsTheHomeAndItsApplicationSupportByTheMacsPaths) {
    const TestVolume mac;
    EXPECT_EQ(mac.files().homeDirectoryForCurrentUser().absoluteString(), "file:///Users/sample/");
    EXPECT_EQ(mac.files().applicationSupportDirectory().absoluteString(),
              "file:///Users/sample/Library/Application%20Support/");
}

TEST(FileManager, TheFixedPlacesAreFolders) {
    const SystemFolders folders(FileURL::fromPath("/Users/sample", true));
    const auto text = [](const FileURL& folder) { return folder.absoluteString(); };
    EXPECT_EQ(text(folders.home), "file:///Users/sample/");
    EXPECT_THAT(folders.applications, ElementsAre(FileURL::fromPath("/Applications", true),
                                                  FileURL::fromPath("/Users/sample/Applications", true),
                                                  FileURL::fromPath("/System/Applications", true)));
    EXPECT_EQ(text(folders.userLaunchAgents), "file:///Users/sample/Library/LaunchAgents/");
    EXPECT_EQ(text(folders.launchAgents), "file:///Library/LaunchAgents/");
    EXPECT_EQ(text(folders.launchDaemons), "file:///Library/LaunchDaemons/");
    EXPECT_EQ(text(folders.groupContainers), "file:///Users/sample/Library/Group%20Containers/");
    EXPECT_EQ(text(folders.trash), "file:///Users/sample/.Trash/");
}

TEST(FileManager, FindsManyFilesAsItFindsEach) {
    const TestVolume mac;
    mac.makeFile("/folder/file");
    mac.makeDirectory("/folder/inner");
    mac.makeLink("/folder/link", "file");
    mac.makeLink("/folder/dangling", "nothing");
    mac.makeLink("/folder/out", mac.makeOutsideFile("secret"));
    mac.makeLink("/linked", "folder");
    mac.makeFile("/other/file");
    std::vector<FileURL> urls;
    for (const std::string path :
         {"/folder/file", "/folder/missing", "/folder/link", "/folder/dangling", "/folder/out",
          "/folder/inner", "/folder/inner/", "/folder/file/", "/other/file", "/other/link", "/missing/file",
          "/folder/file", "/linked/file", "/linked/inner/.", "/linked/inner/..", "/", "/file", "/folder"}) {
        urls.push_back(url(path));
    }
    for (const std::string text :
         {"file:///folder/file%00", "https://example.org/folder/file", "file:folder/file"}) {
        urls.push_back(FileURL::fromString(text).value());
    }
    // More than one thread takes at once, in an order that leads from folder to folder.
    std::vector<const FileURL*> many;
    std::vector<bool> expected;
    for (std::size_t i = 0; i < 1000; ++i) {
        many.push_back(&urls[i * 5 % urls.size()]);
        expected.push_back(mac.files().fileExists(*many.back()));
    }
    EXPECT_EQ(mac.files().filesExist(many, alone), expected);
    EXPECT_EQ(mac.files().filesExist(many, [](FunctionRef<void()> work) { withHelpers(3, work); }), expected);
    EXPECT_THAT(expected, IsSupersetOf({true, false}));
}

TEST(FileManager, ADanglingLinkIsAnEntryButNoFile) {
    const TestVolume mac;
    mac.makeFile("/file");
    mac.makeLink("/dangling", "nothing");
    mac.makeLink("/link", "file");
    EXPECT_TRUE(mac.files().fileExists(url("/file")));
    EXPECT_TRUE(mac.files().fileExists(url("/link")));
    EXPECT_FALSE(mac.files().fileExists(url("/dangling")));
    EXPECT_FALSE(mac.files().fileExists(url("/missing")));
    EXPECT_TRUE(mac.files().entryExists(url("/dangling")));
    EXPECT_TRUE(mac.files().entryExists(url("/link")));
    EXPECT_FALSE(mac.files().entryExists(url("/missing")));
    EXPECT_TRUE(mac.files().fileExists(url("/")));
    EXPECT_TRUE(mac.files().entryExists(url("/")));
}

TEST(FileManager, WhatIsOutsideOfTheVolumeDoesNotExist) {
    const TestVolume mac;
    const auto secret = mac.makeOutsideFile("secret");
    mac.makeLink("/link", secret);
    const auto before = mac.listing();
    EXPECT_FALSE(mac.files().fileExists(url(secret)));
    EXPECT_FALSE(mac.files().fileExists(url("/link")));
    EXPECT_FALSE(mac.files().contents(url("/link"), 1000));
    EXPECT_FALSE(removeItem(mac.files(), url(secret)));
    EXPECT_FALSE(trashItem(mac.files(), url("/../outside/secret")));
    EXPECT_EQ(mac.listing(), before);
}

TEST(FileManager, AURLThatNamesNoFileIsNeverTouched) {
    const TestVolume mac;
    mac.makeFile("/file");
    auto& files = mac.files();
    const auto before = mac.listing();
    for (const std::string text : {"https://example.org/file", "file", "file:", "file://elsewhere/file"}) {
        const auto none = FileURL::fromString(text).value();
        const auto missing = std::errc::no_such_file_or_directory;
        EXPECT_FALSE(files.fileExists(none)) << text;
        EXPECT_FALSE(files.entryExists(none)) << text;
        EXPECT_EQ(files.filesExist(std::vector{&none}, alone), std::vector{false}) << text;
        EXPECT_FALSE(files.isDeletableFile(none)) << text;
        EXPECT_EQ(files.resourceValues(none).error(), missing) << text;
        EXPECT_EQ(files.identity(none).error(), missing) << text;
        EXPECT_EQ(files.contentsOfDirectory(none, {}).error(), missing) << text;
        EXPECT_EQ(files.contents(none, 1000).error(), missing) << text;
        EXPECT_EQ(files.createDirectory(none).error(), missing) << text;
        EXPECT_EQ(files.writeAtomically("x", none).error(), missing) << text;
        EXPECT_EQ(trashItem(files, none).error(), missing) << text;
        EXPECT_EQ(removeItem(files, none).error(), missing) << text;
        EXPECT_EQ(files.allocatedSizes({none}, {}, alone).front().fileAllocatedSize, 0) << text;
    }
    EXPECT_EQ(mac.listing(), before);
}

TEST(FileManager, AProcessWithoutDescriptorsDoesNotTakeAFileForGone) {
    const TestVolume mac;
    mac.makeFile("/file");
    inChildProcess([&] {
        // The sanitizer needs a descriptor when it sees an object's type for the first time.
        EXPECT_FALSE(mac.files().entryExists(url("/nothing")));
        limitDescriptors(0);
        const auto file = url("/file");
        EXPECT_TRUE(mac.files().fileExists(file));
        EXPECT_TRUE(mac.files().entryExists(file));
        EXPECT_EQ(mac.files().filesExist(std::vector{&file}, alone), std::vector{true});
    });
}

TEST(FileManager, ListsTheDirectChildrenWithTheirKinds) {
    const TestVolume mac;
    mac.makeDirectory("/list/folder/deep");
    mac.makeFile("/list/file");
    mac.makeLink("/list/linked folder", "folder");
    mac.makeLink("/list/dangling", "nothing");
    const auto entries = mac.files().contentsOfDirectory(url("/list"), {}).value();
    EXPECT_THAT(names(entries), UnorderedElementsAre("folder", "file", "linked folder", "dangling"));
    for (const auto& entry : entries) {
        const bool isFolder = entry.url.lastPathComponent() == "folder";
        EXPECT_EQ(entry.isDirectory, isFolder);
        EXPECT_EQ(entry.url.absoluteString().ends_with('/'), isFolder);
        EXPECT_EQ(entry.url.path(), "/list/" + entry.url.lastPathComponent());
    }
}

TEST(FileManager, ListsHiddenEntriesUnlessToldToSkipThem) {
    const TestVolume mac;
    mac.makeFile("/list/.hidden");
    mac.makeFile("/list/..also");
    mac.makeFile("/list/shown");
    EXPECT_THAT(names(mac.files().contentsOfDirectory(url("/list"), {}).value()),
                UnorderedElementsAre(".hidden", "..also", "shown"));
    EXPECT_THAT(names(mac.files().contentsOfDirectory(url("/list"), {.skipsHiddenFiles = true}).value()),
                ElementsAre("shown"));
}

TEST(FileManager, ListsOnlyTheEntriesThatAreTaken) {
    const TestVolume mac;
    mac.makeFile("/list/.hidden");
    mac.makeFile("/list/short");
    mac.makeFile("/list/much longer");
    std::vector<std::string> asked;
    const auto isShort = [&](std::string_view name) {
        asked.emplace_back(name);
        return name.size() < 8;
    };
    EXPECT_THAT(names(mac.files()
                          .contentsOfDirectory(url("/list"), {.skipsHiddenFiles = true, .takes = isShort})
                          .value()),
                ElementsAre("short"));
    EXPECT_THAT(asked, UnorderedElementsAre("short", "much longer"));
}

TEST(FileManager, ListsALinkedFolderUnderItsOwnName) {
    const TestVolume mac;
    mac.makeFile("/real/file");
    mac.makeLink("/link", "/real");
    const auto entries = mac.files().contentsOfDirectory(url("/link"), {}).value();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].url.path(), "/link/file");
}

TEST(FileManager, ListsEveryNameThatAFileCanHave) {
    const TestVolume mac;
    std::vector<std::string> expected{"-rf", "new\nline", "\xFF\xFE", "100%", "a%20b", std::string(255, 'n')};
    for (const auto& name : expected) mac.makeFile("/list/" + name, name);
    const auto entries = mac.files().contentsOfDirectory(url("/list"), {}).value();
    EXPECT_THAT(names(entries), testing::UnorderedElementsAreArray(expected));
    for (const auto& entry : entries) {
        EXPECT_EQ(mac.files().contents(entry.url, 1000).value(), entry.url.lastPathComponent());
    }
}

TEST(FileManager, WhatIsNoFolderHasNoListing) {
    const TestVolume mac;
    mac.makeFile("/file");
    EXPECT_EQ(mac.files().contentsOfDirectory(url("/file"), {}).error(), std::errc::not_a_directory);
    EXPECT_EQ(mac.files().contentsOfDirectory(url("/missing"), {}).error(),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, AnUnreadableFolderHasNoListing) {
    const TestVolume mac;
    mac.makeFile("/closed/file");
    mac.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac.machinePath("/closed").c_str(), 0300), 0);
        EXPECT_EQ(mac.files().contentsOfDirectory(url("/closed"), {}).error(), std::errc::permission_denied);
    });
}

TEST(FileManager, TellsTheKindOfAnEntryAndNotOfItsTarget) {
    const TestVolume mac;
    mac.makeFile("/file", std::string(5000, 'x'));
    mac.makeDirectory("/folder");
    mac.makeLink("/link", "folder");
    mac.makeFIFO("/fifo");
    const auto file = mac.files().resourceValues(url("/file")).value();
    EXPECT_TRUE(file.isRegularFile);
    struct stat status {};
    ASSERT_EQ(::lstat(mac.machinePath("/file").c_str(), &status), 0);
    EXPECT_GE(file.fileAllocatedSize.value(), 5000);
    EXPECT_EQ(file.fileAllocatedSize, status.st_blocks * 512);
    EXPECT_EQ(file.totalFileAllocatedSize, file.fileAllocatedSize);

    const auto folder = mac.files().resourceValues(url("/folder")).value();
    EXPECT_TRUE(folder.isDirectory);
    EXPECT_FALSE(folder.isRegularFile);
    EXPECT_EQ(folder.fileAllocatedSize, std::nullopt);

    const auto link = mac.files().resourceValues(url("/link")).value();
    EXPECT_TRUE(link.isSymbolicLink);
    EXPECT_FALSE(link.isDirectory);

    const auto fifo = mac.files().resourceValues(url("/fifo")).value();
    EXPECT_FALSE(fifo.isRegularFile || fifo.isDirectory || fifo.isSymbolicLink);
    EXPECT_EQ(mac.files().resourceValues(url("/missing")).error(), std::errc::no_such_file_or_directory);
}

TEST(FileManager, ModificationDatesCountFrom2001WithTheirFraction) {
    const TestVolume mac;
    const auto file = mac.makeFile("/file");
    const timespec times[2] = {{.tv_sec = 0, .tv_nsec = 0},
                               {.tv_sec = 978'307'200 + 10, .tv_nsec = 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const auto values = mac.files().resourceValues(url("/file")).value();
    EXPECT_EQ(values.contentModificationDate.timeIntervalSinceReferenceDate, 10.25);
}

TEST(FileManager, TwoNamesOfOneFileAreIdentical) {
    const TestVolume mac;
    const auto file = mac.makeFile("/file");
    fs::create_hard_link(file, mac.machinePath("/other"));
    mac.makeLink("/link", "file");
    const auto identity = mac.files().identity(url("/file")).value();
    EXPECT_EQ(mac.files().identity(url("/other")).value(), identity);
    EXPECT_NE(mac.files().identity(url("/link")).value(), identity) << "a link is a file of its own";
    EXPECT_EQ(mac.files().identity(url("/../Users/./sample/")).value(),
              mac.files().identity(url("/Users/sample")).value());
    EXPECT_FALSE(mac.files().identity(url("/missing")));
}

}  // namespace
}  // namespace orvane::test
