#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// Mounts are made in a child, which looks at the volume anew: one that is open already does not see them.
class RemovalMount : public testing::Test {
  protected:
    void SetUp() override {
        if (!mayMount()) GTEST_SKIP() << "nothing can be mounted here";
        mac_.makeFile("/tree/sub/file");
        mac_.makeFile("/tree/file");
        mac_.makeFile("/elsewhere/precious");
    }

    std::unique_ptr<FileManager> filesWithMounts() const {
        return makeFileManager(Volume::open(mac_.machinePath("/")).value(), TestVolume::home(), "/");
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    void bind(const std::string& what, const std::string& where) const {
        ASSERT_EQ(::mount(at(what).c_str(), at(where).c_str(), nullptr, MS_BIND, nullptr), 0);
    }

    TestVolume mac_;
};

TEST_F(RemovalMount, WhatIsMountedInTheTreeSurvives) {
    const auto place = mac_.makeDirectory("/tree/place");
    inChildProcess([&] {
        enterOwnMountNamespace();
        ASSERT_EQ(::mount("tmpfs", place.c_str(), "tmpfs", 0, nullptr), 0);
        mac_.makeFile("/tree/place/precious");
        EXPECT_EQ(filesWithMounts()->removeItem(url("/tree")).error(), std::errc::cross_device_link);
        EXPECT_TRUE(mac_.contains("/tree/place/precious"));
        EXPECT_FALSE(mac_.contains("/tree/sub")) << "the rest is removed";
        EXPECT_FALSE(mac_.contains("/tree/file"));
    });
}

TEST_F(RemovalMount, AFolderOfTheSameFileSystemMountedInTheTreeSurvives) {
    mac_.makeDirectory("/tree/place");
    inChildProcess([&] {
        enterOwnMountNamespace();
        bind("/elsewhere", "/tree/place");
        EXPECT_EQ(filesWithMounts()->removeItem(url("/tree")).error(), std::errc::cross_device_link);
    });
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
}

TEST_F(RemovalMount, AFileMountedInTheTreeSurvives) {
    mac_.makeFile("/tree/place", "under");
    inChildProcess([&] {
        enterOwnMountNamespace();
        bind("/elsewhere/precious", "/tree/place");
        EXPECT_EQ(filesWithMounts()->removeItem(url("/tree")).error(), std::errc::device_or_resource_busy);
    });
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
    EXPECT_TRUE(mac_.contains("/tree/place"));
}

TEST_F(RemovalMount, AnItemThatIsItselfMountedSurvives) {
    inChildProcess([&] {
        enterOwnMountNamespace();
        bind("/elsewhere", "/tree");
        EXPECT_EQ(filesWithMounts()->removeItem(url("/tree")).error(), std::errc::cross_device_link);
        EXPECT_FALSE(filesWithMounts()->isDeletableFile(url("/tree")));
    });
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
    EXPECT_TRUE(mac_.contains("/tree/file"));
}

TEST_F(RemovalMount, AnItemOfAMountedFileSystemIsRemoved) {
    inChildProcess([&] {
        enterOwnMountNamespace();
        ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, nullptr), 0);
        mac_.makeFile("/elsewhere/tree/sub/file");
        EXPECT_TRUE(filesWithMounts()->isDeletableFile(url("/elsewhere/tree")));
        EXPECT_TRUE(filesWithMounts()->removeItem(url("/elsewhere/tree")));
        EXPECT_FALSE(mac_.contains("/elsewhere/tree"));
    });
}

TEST_F(RemovalMount, NothingOfAReadOnlyFileSystemIsDeletable) {
    inChildProcess([&] {
        enterOwnMountNamespace();
        bind("/elsewhere", "/elsewhere");
        ASSERT_EQ(::mount("", at("/elsewhere").c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
                  0);
        const auto files = filesWithMounts();
        EXPECT_TRUE(files->fileExists(url("/elsewhere/precious")));
        EXPECT_FALSE(files->isDeletableFile(url("/elsewhere/precious")));
        EXPECT_EQ(files->removeItem(url("/elsewhere/precious")).error(), std::errc::read_only_file_system);
        EXPECT_FALSE(files->trashItem(url("/elsewhere/precious")));
        EXPECT_FALSE(files->writeAtomically("x", url("/elsewhere/new")));
    });
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
}

TEST_F(RemovalMount, AnotherFileSystemIsNeverCopiedToTheTrash) {
    mac_.makeDirectory(TestVolume::home() + "/.Trash");
    inChildProcess([&] {
        enterOwnMountNamespace();
        ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, nullptr), 0);
        mac_.makeFile("/elsewhere/Foo.app/file", "contents");
        EXPECT_EQ(filesWithMounts()->trashItem(url("/elsewhere/Foo.app")).error(),
                  std::errc::cross_device_link);
        EXPECT_EQ(readFile(at("/elsewhere/Foo.app/file")), "contents");
        EXPECT_FALSE(mac_.contains(TestVolume::home() + "/.Trash/Foo.app"));
    });
}

TEST_F(RemovalMount, AFullFileSystemKeepsTheOldFile) {
    inChildProcess([&] {
        enterOwnMountNamespace();
        ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, "size=64k"), 0);
        mac_.makeFile("/elsewhere/catalog", "old");
        EXPECT_EQ(
            filesWithMounts()->writeAtomically(std::string(1 << 20, 'n'), url("/elsewhere/catalog")).error(),
            std::errc::no_space_on_device);
        EXPECT_EQ(readFile(at("/elsewhere/catalog")), "old");
        EXPECT_EQ(std::distance(fs::directory_iterator(at("/elsewhere")), {}), 1) << "nothing is left behind";
    });
}

}  // namespace
}  // namespace orvane::test
