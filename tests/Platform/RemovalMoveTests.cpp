#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>

#include "Platform/FileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr int depth = 40;
/// Of the tree's folders so many stay open; the way back to the others is their "..".
constexpr int openFolders = 32;

struct stat statusAt(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// A tree of folders in each other, changed at the moment at which a removal has come to its bottom.
class RemovalMove {
  protected:
    /// `level` folders deep in the tree; its top is level 0.
    static std::string folder(int level) {
        std::string path = "/tree";
        for (int i = 0; i < level; ++i) path += "/d";
        return path;
    }

    /// A file on either side of every folder leaves something to read on the way back.
    void makeTree() const {
        mac_.makeDirectory(folder(depth - 1));
        for (int level = 0; level < depth - 1; ++level) mac_.makeFile(folder(level) + "/z");
        mac_.makeFile(folder(depth - 1) + "/bottom");
    }

    /// Removes the tree; `change` is made when everything on the way down to the bottom is open.
    template <typename Change>
    Result<void> removeAndAtTheBottom(Change change) {
        Result<void> removed;
        int cues = 0;
        onCue(
            {SYS_unlinkat},
            [&](const PendingCall& call) {
                if (call.text(1) == "bottom" && ++cues == 1) change();
                return proceed;
            },
            [&] { removed = removeItem(mac_.files(), url("/tree")); });
        EXPECT_EQ(cues, 1);
        return removed;
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(RemovalMove, AFolderMovedAwayNeverLeadsOutOfTheTree) {
    // Folders and files of the same names as in the tree: whatever the removal takes for its own, it is here.
    for (const std::string each : {"/kept/d/d/d/", "/kept/d/d/", "/kept/d/", "/kept/"}) {
        mac_.makeFile(each + "a");
        mac_.makeFile(each + "z");
        mac_.makeDirectory(each + "d");
        mac_.makeDirectory(each + "tree");
    }
    const auto before = mac_.listing();
    for (int level = 0; level < depth; ++level) {
        SCOPED_TRACE(level);
        makeTree();
        const auto moved = at("/kept/d/d/moved");
        const auto removed = removeAndAtTheBottom([&] { fs::rename(at(folder(level)), moved); });
        // The folder above is found again while it is still open, and the one above the whole tree is.
        constexpr int closedFolders = depth - openFolders;
        if (level == 0 || level > closedFolders) {
            EXPECT_TRUE(removed) << removed.error().message();
            EXPECT_FALSE(mac_.contains("/tree"));
        } else {
            EXPECT_EQ(removed.error().value(), ESTALE);
            EXPECT_TRUE(mac_.contains(folder(level - 1)));
        }
        EXPECT_TRUE(fs::is_empty(moved)) << "it was part of the tree, and is emptied where it is";
        fs::remove(moved);
        fs::remove_all(at("/tree"));
        ASSERT_EQ(mac_.listing(), before);
    }
}

PRIVATE_MOUNTS_TEST(RemovalMove, WhatIsPutInThePlaceOfAMovedFolderSurvives) {
    for (const int level : {1, depth / 2, depth - 1}) {
        SCOPED_TRACE(level);
        makeTree();
        const auto removed = removeAndAtTheBottom([&] {
            fs::rename(at(folder(level)), at("/moved"));
            mac_.makeFile(folder(level) + "/new");
        });
        EXPECT_FALSE(removed);
        EXPECT_TRUE(mac_.contains(folder(level) + "/new"));
        fs::remove_all(at("/tree"));
        fs::remove_all(at("/moved"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalMove, AFileSystemMountedOnTheWayBackSurvives) {
    makeTree();
    mac_.makeDirectory("/other");
    ASSERT_EQ(::mount("tmpfs", at("/other").c_str(), "tmpfs", 0, nullptr), 0);
    // The folder above and what is mounted on it have the same number, each in its own file system.
    const auto above = statusAt(at(folder(3)));
    std::string twin;
    for (int i = 0; twin.empty() && i < 10'000; ++i) {
        const auto made = mac_.makeDirectory("/other/" + std::to_string(i));
        if (statusAt(made).st_ino == above.st_ino) twin = made;
    }
    if (twin.empty()) GTEST_SKIP() << "this kernel does not number the files of a file system by themselves";
    fs::create_directory(twin + "/d");
    for (const std::string each : {"a", "z", "precious"})
        mac_.makeFile(twin.substr(at("").size()) + "/" + each);

    const auto removed = removeAndAtTheBottom([&] {
        ASSERT_EQ(::mount(twin.c_str(), at(folder(3)).c_str(), nullptr, MS_BIND, nullptr), 0);
        ASSERT_EQ(statusAt(at(folder(3))).st_ino, above.st_ino);
    });
    EXPECT_EQ(removed.error().value(), ESTALE);
    for (const std::string each : {"d", "a", "z", "precious"}) EXPECT_TRUE(fs::exists(twin + "/" + each));
}

PRIVATE_MOUNTS_TEST(RemovalMove, AFileSystemMountedOnAnOpenFolderSurvives) {
    makeTree();
    const auto place = at(folder(depth / 2));
    const auto removed = removeAndAtTheBottom([&] {
        ASSERT_EQ(::mount("tmpfs", place.c_str(), "tmpfs", 0, nullptr), 0);
        mac_.makeFile(folder(depth / 2) + "/precious");
    });
    EXPECT_EQ(removed.error(), std::errc::device_or_resource_busy);
    EXPECT_TRUE(fs::exists(place + "/precious"));
}

}  // namespace
}  // namespace orvane::test
