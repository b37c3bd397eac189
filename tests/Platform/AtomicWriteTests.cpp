#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

const std::string catalog = "/Users/sample/Library/applications.json";

class AtomicWrite : public testing::Test {
  protected:
    AtomicWrite() { mac_.makeDirectory("/Users/sample/Library"); }

    Result<void> write(std::string_view bytes, const std::string& path = catalog) const {
        return mac_.files().writeAtomically(bytes, TestVolume::url(path));
    }
    std::string textAt(const std::string& path) const { return readFile(mac_.machinePath(path)); }
    struct stat status(const std::string& path = catalog) const {
        struct stat status {};
        EXPECT_EQ(::lstat(mac_.machinePath(path).c_str(), &status), 0);
        return status;
    }
    std::ptrdiff_t filesInFolder() const {
        return std::distance(fs::directory_iterator(mac_.machinePath("/Users/sample/Library")), {});
    }

    TestVolume mac_;
};

TEST_F(AtomicWrite, MakesAFileForTheUserAlone) {
    ASSERT_TRUE(write("[]"));
    EXPECT_EQ(textAt(catalog), "[]");
    EXPECT_TRUE(S_ISREG(status().st_mode));
    EXPECT_EQ(status().st_mode & 07777, 0600U);
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicWrite, ReplacesTheContentsWhole) {
    std::string large(3 << 20, 'n');
    large[12345] = '\0';
    for (const auto& bytes : {std::string("first, longer"), std::string("second"), std::string(), large}) {
        ASSERT_TRUE(write(bytes));
        EXPECT_EQ(textAt(catalog), bytes);
    }
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicWrite, AnOpenFileKeepsTheOldContents) {
    const auto file = mac_.makeFile(catalog, "old");
    const FileDescriptor reader(::open(file.c_str(), O_RDONLY));
    ASSERT_TRUE(write("new"));
    char bytes[4] = {};
    EXPECT_EQ(::read(reader.get(), bytes, 3), 3);
    EXPECT_STREQ(bytes, "old");
}

TEST_F(AtomicWrite, KeepsTheModeOfTheFile) {
    const auto file = mac_.makeFile(catalog, "old");
    for (const mode_t mode : {0640U, 0644U, 0400U}) {
        ASSERT_EQ(::chmod(file.c_str(), mode), 0);
        ASSERT_TRUE(write("new"));
        EXPECT_EQ(status().st_mode & 07777, mode);
    }
    ASSERT_EQ(::chmod(file.c_str(), 04640), 0);
    ASSERT_TRUE(write("new"));
    EXPECT_EQ(status().st_mode & 07777, 0640U) << "but no new contents run with the rights of their owner";
}

TEST_F(AtomicWrite, TheAdministratorLeavesTheFileToItsOwner) {
    if (!isRoot()) GTEST_SKIP() << "only root can write for somebody else";
    giveToUnprivilegedUser(mac_.makeFile(catalog, "old"));
    ASSERT_TRUE(write("new"));
    EXPECT_EQ(status().st_uid, unprivilegedUser());
}

TEST_F(AtomicWrite, ReplacesALinkAndNotItsTarget) {
    mac_.makeFile("/elsewhere", "precious");
    mac_.makeOutsideFile("file", "precious");
    for (const auto& target : {std::string("/elsewhere"), mac_.outside("file"), std::string("nothing")}) {
        mac_.makeLink(catalog, target);
        ASSERT_TRUE(write("new"));
        EXPECT_TRUE(S_ISREG(status().st_mode));
        EXPECT_EQ(status().st_mode & 07777, 0600U);
        EXPECT_EQ(textAt(catalog), "new");
        fs::remove(mac_.machinePath(catalog));
    }
    EXPECT_EQ(textAt("/elsewhere"), "precious");
    EXPECT_EQ(readFile(mac_.outside("file")), "precious");
    EXPECT_FALSE(mac_.contains("/Users/sample/Library/nothing"));
}

TEST_F(AtomicWrite, AFolderInThePlaceIsAnErrorAndStays) {
    mac_.makeFile(catalog + "/file");
    const auto before = mac_.listing();
    EXPECT_EQ(write("new").error(), std::errc::is_a_directory);
    EXPECT_EQ(mac_.listing(), before);
}

TEST_F(AtomicWrite, NeedsTheFolder) {
    EXPECT_EQ(write("new", "/missing/file").error(), std::errc::no_such_file_or_directory);
    mac_.makeFile("/file");
    EXPECT_EQ(write("new", "/file/file").error(), std::errc::not_a_directory);
    mac_.makeLink("/outside", mac_.outside());
    EXPECT_FALSE(write("new", "/outside/file"));
    EXPECT_FALSE(write("new", "/"));
}

TEST_F(AtomicWrite, AFailureLeavesTheOldFile) {
    mac_.makeFile(catalog, "old");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        const auto folder = mac_.machinePath("/Users/sample/Library");
        ASSERT_EQ(::chmod(folder.c_str(), 0500), 0);
        EXPECT_EQ(write("new").error(), std::errc::permission_denied);
        EXPECT_EQ(textAt(catalog), "old");
        EXPECT_EQ(filesInFolder(), 1);
        ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
    });
}

TEST_F(AtomicWrite, WhatTheDiskDidNotTakeIsNoSave) {
    mac_.makeFile(catalog, "old");
    inChildProcess([&] {
        forbidSystemCall(SYS_fsync, EIO);
        EXPECT_EQ(write("new").error(), std::errc::io_error);
        EXPECT_EQ(textAt(catalog), "old");
        EXPECT_EQ(filesInFolder(), 1);
    });
}

TEST_F(AtomicWrite, SweepsWhatACrashLeftBehind) {
    mac_.makeFile("/Users/sample/Library/.orvane-save-0123456789abcdef", "half");
    ASSERT_TRUE(write("new"));
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicWrite, DoesNotSweepWhatIsStillBeingWritten) {
    const auto file = mac_.makeFile("/Users/sample/Library/.orvane-save-0123456789abcdef", "half");
    const FileDescriptor writer(::open(file.c_str(), O_WRONLY));
    ASSERT_EQ(::flock(writer.get(), LOCK_EX), 0);
    ASSERT_TRUE(write("new"));
    EXPECT_EQ(readFile(file), "half");
}

TEST_F(AtomicWrite, SweepsNothingThatIsNotItsOwn) {
    const std::string folder = "/Users/sample/Library/";
    for (const std::string name :
         {".orvane-save-", ".orvane-save-0123456789abcde", ".orvane-save-0123456789abcdeg",
          ".orvane-save-0123456789abcdef0", "orvane-save-0123456789abcdef", ".orvane-save-0123456789ABCDEF",
          ".another-one-0123456789abcdef"}) {
        mac_.makeFile(folder + name);
    }
    mac_.makeDirectory(folder + ".orvane-save-0000000000000001");
    mac_.makeFIFO(folder + ".orvane-save-0000000000000002");
    mac_.makeLink(folder + ".orvane-save-0000000000000003", "applications.json");
    mac_.makeFile(catalog);
    if (isRoot()) giveToUnprivilegedUser(mac_.makeFile(folder + ".orvane-save-0000000000000004"));
    const auto before = mac_.listing();
    ASSERT_TRUE(write("y"));
    ASSERT_EQ(::chmod(mac_.machinePath(catalog).c_str(), 0644), 0);
    EXPECT_EQ(mac_.listing(), before);
}

TEST_F(AtomicWrite, WritesUnderEveryName) {
    for (const std::string name : {"-rf", "new\nline", "\xFF", ".hidden"}) {
        ASSERT_TRUE(write(name, "/Users/sample/Library/" + name));
        EXPECT_EQ(textAt("/Users/sample/Library/" + name), name);
    }
    const std::string longest(255, 'n');
    EXPECT_TRUE(write("x", "/" + longest));
    EXPECT_FALSE(write("x", "/" + longest + "n"));
}

}  // namespace
}  // namespace orvane::test
