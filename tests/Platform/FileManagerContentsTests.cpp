#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t limit = 1000;

TEST(FileManagerContents, ReadsRegularFilesWithinTheLimit) {
    const TestVolume mac;
    mac.makeFile("/empty", "");
    mac.makeFile("/exact", std::string(limit, 'a'));
    mac.makeFile("/larger", std::string(limit + 1, 'a'));
    mac.makeLink("/link", "exact");
    EXPECT_EQ(mac.files().contents(url("/empty"), limit).value(), "");
    EXPECT_EQ(mac.files().contents(url("/exact"), limit).value(), std::string(limit, 'a'));
    EXPECT_EQ(mac.files().contents(url("/link"), limit).value().size(), limit);
    EXPECT_EQ(mac.files().contents(url("/larger"), limit).error(), std::errc::file_too_large);
}

TEST(FileManagerContents, AFileLargerThanAnyMemoryIsRefusedBeforeItIsRead) {
    const TestVolume mac;
    fs::resize_file(mac.makeFile("/sparse"), std::uintmax_t{1} << 43);
    EXPECT_EQ(mac.files().contents(url("/sparse"), limit).error(), std::errc::file_too_large);
}

TEST(FileManagerContents, ReadsAFileThatDoesNotKnowItsSize) {
    const auto machine = Volume::open("/").value();
    const auto files = makeFileManager(machine, "/", "/");
    const auto text = files->contents(url("/proc/self/status"), 1 << 20);
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->starts_with("Name:"));
    EXPECT_EQ(files->contents(url("/proc/self/status"), 10).error(), std::errc::file_too_large);
}

TEST(FileManagerContents, ReadsNothingButRegularFilesAndNeverWaits) {
    const TestVolume mac;
    mac.makeFIFO("/fifo");
    mac.makeLink("/linked fifo", "fifo");
    mac.makeLink("/dangling", "nothing");
    for (const std::string path : {"/fifo", "/linked fifo", "/"}) {
        EXPECT_EQ(mac.files().contents(url(path), limit).error(), std::errc::invalid_argument) << path;
    }
    EXPECT_EQ(mac.files().contents(url("/dangling"), limit).error(), std::errc::no_such_file_or_directory);
    const auto machine = makeFileManager(Volume::open("/").value(), "/", "/");
    EXPECT_EQ(machine->contents(url("/dev/zero"), limit).error(), std::errc::invalid_argument);
}

TEST(FileManagerFolders, CreatesAFolderWithItsParents) {
    const TestVolume mac;
    ASSERT_TRUE(mac.files().createDirectory(url("/Users/sample/Library//Application Support/Orvane")));
    EXPECT_TRUE(fs::is_directory(mac.machinePath("/Users/sample/Library/Application Support/Orvane")));
    const auto before = mac.listing();
    EXPECT_TRUE(mac.files().createDirectory(url("/Users/sample/Library/Application Support/Orvane")));
    EXPECT_TRUE(mac.files().createDirectory(url("/")));
    EXPECT_EQ(mac.listing(), before);
}

TEST(FileManagerFolders, GivesAFolderTheRightsThatTheUserGivesToAll) {
    const TestVolume mac;
    inChildProcess([&] {
        for (const mode_t withheld : {0002U, 0022U, 0077U}) {
            ::umask(withheld);
            const auto path = "/" + std::to_string(withheld);
            ASSERT_TRUE(mac.files().createDirectory(url(path)));
            struct stat status {};
            ASSERT_EQ(::stat(mac.machinePath(path).c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 07777, 0777U & ~withheld);
        }
    });
}

TEST(FileManagerFolders, CreatesFoldersBehindLinksInsideTheVolume) {
    const TestVolume mac;
    mac.makeDirectory("/Volumes/Data");
    mac.makeLink("/Users/sample/Library", "/Volumes/Data");
    ASSERT_TRUE(mac.files().createDirectory(url("/Users/sample/Library/a/b")));
    EXPECT_TRUE(fs::is_directory(mac.machinePath("/Volumes/Data/a/b")));
}

TEST(FileManagerFolders, CreatesNoFolderWhereSomethingElseIs) {
    const TestVolume mac;
    mac.makeFile("/file");
    mac.makeLink("/dangling", "/nothing");
    mac.makeLink("/escape", mac.outside());
    const auto before = mac.listing();
    EXPECT_EQ(mac.files().createDirectory(url("/file")).error(), std::errc::not_a_directory);
    EXPECT_EQ(mac.files().createDirectory(url("/file/deeper")).error(), std::errc::not_a_directory);
    EXPECT_FALSE(mac.files().createDirectory(url("/dangling")));
    EXPECT_FALSE(mac.files().createDirectory(url("/escape/deeper")));
    EXPECT_EQ(mac.listing(), before);
}

TEST(FileManagerFolders, SaysWhyAFolderCannotBeCreated) {
    const TestVolume mac;
    mac.makeDirectory("/closed");
    mac.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac.machinePath("/closed").c_str(), 0500), 0);
        EXPECT_EQ(mac.files().createDirectory(url("/closed/a/b")).error(), std::errc::permission_denied);
    });
}

}  // namespace
}  // namespace orvane::test
