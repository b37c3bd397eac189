#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>

#include "Platform/FileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class RemovalMount {
  protected:
    RemovalMount() {
        mac_.makeFile("/tree/sub/file");
        mac_.makeFile("/tree/file");
        mac_.makeFile("/elsewhere/precious");
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    void bind(const std::string& what, const std::string& where) const {
        ASSERT_EQ(::mount(at(what).c_str(), at(where).c_str(), nullptr, MS_BIND, nullptr), 0);
    }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(RemovalMount, WhatIsMountedInTheTreeSurvives) {
    const auto place = mac_.makeDirectory("/tree/place");
    ASSERT_EQ(::mount("tmpfs", place.c_str(), "tmpfs", 0, nullptr), 0);
    mac_.makeFile("/tree/place/precious");
    EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::cross_device_link);
    EXPECT_TRUE(mac_.contains("/tree/place/precious"));
    EXPECT_FALSE(mac_.contains("/tree/sub")) << "the rest is removed";
    EXPECT_FALSE(mac_.contains("/tree/file"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AFolderOfTheSameFileSystemMountedInTheTreeSurvives) {
    mac_.makeDirectory("/tree/place");
    bind("/elsewhere", "/tree/place");
    EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::cross_device_link);
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AFileMountedInTheTreeSurvives) {
    mac_.makeFile("/tree/place", "under");
    bind("/elsewhere/precious", "/tree/place");
    EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::device_or_resource_busy);
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
    EXPECT_TRUE(mac_.contains("/tree/place"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AnItemThatIsItselfMountedSurvives) {
    bind("/elsewhere", "/tree");
    EXPECT_EQ(removeItem(mac_.files(), url("/tree")).error(), std::errc::cross_device_link);
    EXPECT_FALSE(mac_.files().isDeletableFile(url("/tree")));
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
    ASSERT_EQ(::umount(at("/tree").c_str()), 0);
    EXPECT_TRUE(mac_.contains("/tree/file"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AnItemOfAMountedFileSystemIsRemoved) {
    ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, nullptr), 0);
    mac_.makeFile("/elsewhere/tree/sub/file");
    EXPECT_TRUE(mac_.files().isDeletableFile(url("/elsewhere/tree")));
    EXPECT_TRUE(removeItem(mac_.files(), url("/elsewhere/tree")));
    EXPECT_FALSE(mac_.contains("/elsewhere/tree"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, NothingOfAReadOnlyFileSystemIsDeletable) {
    bind("/elsewhere", "/elsewhere");
    ASSERT_EQ(::mount("", at("/elsewhere").c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    auto& files = mac_.files();
    EXPECT_TRUE(files.fileExists(url("/elsewhere/precious")));
    EXPECT_FALSE(files.isDeletableFile(url("/elsewhere/precious")));
    EXPECT_EQ(removeItem(files, url("/elsewhere/precious")).error(), std::errc::read_only_file_system);
    EXPECT_FALSE(trashItem(files, url("/elsewhere/precious")));
    EXPECT_FALSE(files.writeAtomically("x", url("/elsewhere/new")));
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AnotherFileSystemIsNeverCopiedToTheTrash) {
    mac_.makeDirectory(TestVolume::home() + "/.Trash");
    ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, nullptr), 0);
    mac_.makeFile("/elsewhere/Foo.app/file", "contents");
    EXPECT_EQ(trashItem(mac_.files(), url("/elsewhere/Foo.app")).error(), std::errc::cross_device_link);
    EXPECT_EQ(readFile(at("/elsewhere/Foo.app/file")), "contents");
    EXPECT_FALSE(mac_.contains(TestVolume::home() + "/.Trash/Foo.app"));
}

PRIVATE_MOUNTS_TEST(RemovalMount, AFullFileSystemKeepsTheOldFile) {
    ASSERT_EQ(::mount("tmpfs", at("/elsewhere").c_str(), "tmpfs", 0, "size=64k"), 0);
    mac_.makeFile("/elsewhere/catalog", "old");
    EXPECT_EQ(mac_.files().writeAtomically(std::string(1 << 20, 'n'), url("/elsewhere/catalog")).error(),
              std::errc::no_space_on_device);
    EXPECT_EQ(readFile(at("/elsewhere/catalog")), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(at("/elsewhere")), {}), 1) << "nothing is left behind";
}

}  // namespace
}  // namespace orvane::test
