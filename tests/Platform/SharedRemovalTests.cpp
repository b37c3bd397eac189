// One tree is removed by several threads at once, which meet in its folders.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "Platform/FileManager.h"
#include "Platform/Posix/DirectoryStack.h"
#include "Platform/Posix/SharedWork.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeBuilding.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class SharedRemoval {
  protected:
    Result<void> remove(const std::string& path, std::size_t threads) {
        return removeItem(mac_.files(), url(path), std::nullopt,
                          [&](FunctionRef<void()> work) { withHelpers(threads - 1, work); });
    }

    /// Folders side by side and in each other, with files in all of them.
    void makeTree(int width = 6, int levels = 3) const { fill("/tree", width, levels); }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }
    mode_t modeOf(const std::string& path) const {
        struct stat status {};
        return ::lstat(at(path).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TestVolume mac_;

  private:
    void fill(const std::string& folder, int width, int levels) const {
        mac_.makeFile(folder + "/file");
        for (int i = 0; levels > 0 && i < width; ++i) {
            fill(folder + "/" + std::to_string(i), width, levels - 1);
        }
    }
};

PRIVATE_MOUNTS_TEST(SharedRemoval, LeavesNothingOfTheTreeAndAllBesideIt) {
    mac_.makeFile("/tree2/file");
    mac_.makeFile("/kept/file");
    const auto without = mac_.listing();
    for (const std::size_t threads : {1U, 2U, 5U, 16U}) {
        makeTree();
        makeWideDeepTree(at("/tree"), 5, 60);
        mac_.makeLink("/tree/0/link", "/kept");
        mac_.makeFIFO("/tree/1/fifo");
        const auto removed = remove("/tree", threads);
        EXPECT_TRUE(removed) << removed.error().message();
        EXPECT_EQ(mac_.listing(), without) << threads;
    }
}

PRIVATE_MOUNTS_TEST(SharedRemoval, OfWhatIsNoFolderNeedsNoThreads) {
    mac_.makeFile("/file");
    mac_.makeLink("/link", "/");
    for (const std::string path : {"/file", "/link"}) {
        const auto removed = removeItem(mac_.files(), url(path), std::nullopt,
                                        [](FunctionRef<void()>) { ADD_FAILURE() << "nothing to share"; });
        EXPECT_TRUE(removed);
        EXPECT_FALSE(fs::exists(fs::symlink_status(at(path))));
    }
}

PRIVATE_MOUNTS_TEST(SharedRemoval, ReachesTheBottomOfAHugeDepthWithFewDescriptorsAndASmallStack) {
    const auto without = mac_.listing();
    makeDeepTree(mac_.makeDirectory("/deep"), 100'000);
    inChildProcess([&] {
        limitDescriptors(64);
        // New threads have a stack of that size.
        const rlimit small{256 * 1024, 256 * 1024};
        ASSERT_EQ(::setrlimit(RLIMIT_STACK, &small), 0);
        std::jthread([&] { EXPECT_TRUE(remove("/deep", 4)); }).join();
    });
    EXPECT_EQ(mac_.listing(), without);
}

PRIVATE_MOUNTS_TEST(SharedRemoval, IsWholeHoweverFewDescriptorsThereAre) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
    const auto without = mac_.listing();
    for (const unsigned spare : {5U, 8U, 20U, 60U}) {
        makeWideDeepTree(mac_.makeDirectory("/tree"), 6, 60);
        inChildProcess([&] {
            limitDescriptors(highestDescriptor() + 1 + spare);
            const auto removed = remove("/tree", 16);
            EXPECT_TRUE(removed) << removed.error().message() << " with " << spare;
        });
        EXPECT_EQ(mac_.listing(), without) << "with " << spare << " descriptors to spare";
    }
}

PRIVATE_MOUNTS_TEST(SharedRemoval, KeepsFewFoldersOpenHoweverManyThereAre) {
    makeWideDeepTree(mac_.makeDirectory("/tree"), 120, 40);
    constexpr std::size_t threads = 2;
    const auto openDescriptors = [] {
        const fs::directory_iterator all("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    };
    std::size_t most = 0;
    std::size_t before = 0;
    onCue(
        {SYS_openat2},
        [&](const PendingCall&) {
            const auto open = openDescriptors();
            if (before == 0) before = open;
            most = std::max(most, open - before);
            return proceed;
        },
        [&] { EXPECT_TRUE(remove("/tree", threads)); });
    EXPECT_FALSE(mac_.contains("/tree"));
    // Each has one more open on the way down or up, and the volume's own folder is open beside them.
    constexpr std::size_t waiting = 32;
    EXPECT_LE(most, threads * (DirectoryStack::maximumOpenFolders + 2) + waiting + 2);
}

PRIVATE_MOUNTS_TEST(SharedRemoval, AFailureStopsNothingElse) {
    makeTree();
    for (const std::string folder : {"/tree/0/1", "/tree/2/3/4", "/tree/5"}) {
        mac_.makeFile(folder + "/failing");
        ASSERT_EQ(::chmod(at(folder).c_str(), 0500), 0);
    }
    Result<void> removed;
    onCue(
        {SYS_unlinkat},
        [&](const PendingCall& call) { return call.text(1) == "failing" ? failWith(EIO) : proceed; },
        [&] { removed = remove("/tree", 4); });
    EXPECT_EQ(removed.error(), std::errc::io_error) << "what failed, and not what came of it";
    std::size_t left = 0;
    for (const auto& entry : fs::recursive_directory_iterator(at("/tree"))) {
        ++left;
        EXPECT_TRUE(entry.is_directory() || entry.path().filename() == "failing") << entry.path();
    }
    EXPECT_EQ(left, 3U + 2 + 3 + 1) << "those, and the folders that lead to them";
    for (const std::string folder : {"/tree/0/1", "/tree/2/3/4", "/tree/5"}) {
        EXPECT_EQ(modeOf(folder), 0500U) << folder;
    }
}

PRIVATE_MOUNTS_TEST(SharedRemoval, WhatIsMountedInTheTreeSurvives) {
    makeTree();
    mac_.makeFile("/elsewhere/precious");
    for (const std::string place : {"/tree/0/0/0", "/tree/3", "/tree/5/5/5"}) {
        ASSERT_EQ(::mount(at("/elsewhere").c_str(), at(place).c_str(), nullptr, MS_BIND, nullptr), 0);
    }
    EXPECT_EQ(remove("/tree", 4).error(), std::errc::cross_device_link);
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
    EXPECT_FALSE(mac_.contains("/tree/1"));
    EXPECT_FALSE(mac_.contains("/tree/5/4"));
}

PRIVATE_MOUNTS_TEST(SharedRemoval, WhatComesMeanwhileGoesWithTheNextPass) {
    for (const int additions : {2, 3}) {
        makeTree();
        int attempts = 0;
        Result<void> removed;
        onCue(
            {SYS_unlinkat},
            [&](const PendingCall& call) {
                const bool isTop = call.arguments[2] == AT_REMOVEDIR && call.text(1) == "tree";
                if (isTop && ++attempts <= additions) {
                    for (const std::string folder : {"a", "b", "c"}) {
                        mac_.makeFile("/tree/" + folder + "/" + std::to_string(attempts));
                    }
                }
                return proceed;
            },
            [&] { removed = remove("/tree", 4); });
        EXPECT_EQ(attempts, 3);
        EXPECT_EQ(removed.has_value(), additions < 3);
        EXPECT_EQ(mac_.contains("/tree"), additions == 3);
        fs::remove_all(at("/tree"));
    }
}

/// A folder is moved at the moment at which the thread that has emptied it looks for the one above it.
class SharedRemovalMove : protected SharedRemoval {
  protected:
    /// Removes trees by several threads until one looks for the folder above: at that very call, which may
    /// not come because that thread has gone down to the folder itself, `change` is given the name.
    template <typename Change>
    Result<void> removeAndOnTheWayUp(Change change) {
        for (int round = 0; round < 200; ++round) {
            makeTree(8, 2);
            bool isDone = false;
            Result<void> removed;
            onCue(
                {SYS_openat},
                [&](const PendingCall& call) {
                    if (!isDone && call.text(1) == "..") {
                        isDone = true;
                        const auto folder =
                            fs::read_symlink("/proc/self/fd/" + std::to_string(call.descriptor(0)));
                        change(folder.string());
                    }
                    return proceed;
                },
                [&] { removed = remove("/tree", 4); });
            if (isDone) return removed;
            EXPECT_FALSE(mac_.contains("/tree"));
        }
        ADD_FAILURE() << "no thread has left a folder to another one";
        return {};
    }
};

PRIVATE_MOUNTS_TEST(SharedRemovalMove, AFolderMovedAwayNeverLeadsOutOfTheTree) {
    // What lies there has the names of the tree, and is empty where a folder above would be removed.
    for (int i = 0; i < 8; ++i) mac_.makeDirectory("/kept/tree/" + std::to_string(i));
    mac_.makeFile("/kept/tree/file");
    const auto before = mac_.listing();
    const auto removed =
        removeAndOnTheWayUp([&](const std::string& folder) { fs::rename(folder, at("/kept/tree/moved")); });
    EXPECT_EQ(removed.error().value(), ESTALE);
    EXPECT_TRUE(fs::is_empty(at("/kept/tree/moved")))
        << "it was part of the tree, and is emptied where it is";
    fs::remove(at("/kept/tree/moved"));
    fs::remove_all(at("/tree"));
    EXPECT_EQ(mac_.listing(), before);
}

PRIVATE_MOUNTS_TEST(SharedRemovalMove, AnEmptyFolderOfTheSameNameElsewhereSurvives) {
    mac_.makeDirectory("/kept");
    std::string name;
    const auto removed = removeAndOnTheWayUp([&](const std::string& folder) {
        name = fs::path(folder).filename();
        // The one that was emptied lies beside another of its name.
        fs::create_directory(at("/kept/" + name));
        fs::create_directory(at("/kept/in"));
        fs::rename(folder, at("/kept/in/moved"));
        fs::create_directory(at("/kept/in/" + name));
    });
    EXPECT_EQ(removed.error().value(), ESTALE);
    EXPECT_TRUE(mac_.contains("/kept/in/" + name));
    EXPECT_TRUE(mac_.contains("/kept/" + name));
}

PRIVATE_MOUNTS_TEST(SharedRemovalMove, ALostFolderKeepsNobodyFromTheRest) {
    mac_.makeDirectory("/kept");
    const auto removed =
        removeAndOnTheWayUp([&](const std::string& folder) { fs::rename(folder, at("/kept/moved")); });
    EXPECT_EQ(removed.error().value(), ESTALE);
    // What remains of the tree are folders above the one that was moved, without a file.
    if (mac_.contains("/tree")) {
        for (const auto& entry : fs::recursive_directory_iterator(at("/tree"))) {
            EXPECT_TRUE(entry.is_directory()) << entry.path();
        }
    }
}

class SharedRemovalRace : protected SharedRemoval {};

PRIVATE_MOUNTS_TEST(SharedRemovalRace, FoldersSwappedForLinksNeverLeadOutOfTheTree) {
    const auto precious = mac_.makeDirectory("/precious");
    for (int i = 0; i < 8; ++i) mac_.makeFile("/precious/" + std::to_string(i) + "/file");
    const auto before = mac_.listing();
    for (int round = 0; round < 150; ++round) {
        makeTree(6, 2);
        mac_.makeLink("/tree/link", precious);
        std::atomic<bool> isOver = false;
        std::jthread swapper([&] {
            // Ends by itself when one of the two is gone.
            try {
                for (unsigned i = 0; !isOver; ++i) {
                    exchangeEntries(at("/tree/" + std::to_string(i % 6)), at("/tree/link"));
                }
            } catch (const std::system_error&) {
            }
        });
        static_cast<void>(remove("/tree", 4));
        isOver = true;
        swapper.join();
        fs::remove_all(at("/tree"));
        ASSERT_EQ(mac_.listing(), before);
    }
}

PRIVATE_MOUNTS_TEST(SharedRemovalRace, FoldersMovedAboutAreLostToNobodyElse) {
    mac_.makeFile("/kept/file");
    const auto before = mac_.listing();
    for (int round = 0; round < 150; ++round) {
        makeTree(6, 2);
        std::atomic<bool> isOver = false;
        std::jthread mover([&] {
            std::error_code ignored;
            for (unsigned i = 0; !isOver; ++i) {
                const auto folder = at("/tree/" + std::to_string(i % 6));
                fs::rename(folder + "/" + std::to_string(i % 5), at("/kept/moved"), ignored);
                fs::rename(at("/kept/moved"), folder + "/back", ignored);
            }
        });
        static_cast<void>(remove("/tree", 4));
        isOver = true;
        mover.join();
        fs::remove_all(at("/tree"));
        fs::remove_all(at("/kept/moved"));
        ASSERT_EQ(mac_.listing(), before);
    }
}

PRIVATE_MOUNTS_TEST(SharedRemovalRace, TwoRemovalsOfOneTreeDoNotDisturbEachOther) {
    for (int round = 0; round < 30; ++round) {
        makeTree(6, 2);
        Result<void> other;
        std::jthread second([&] { other = remove("/tree", 3); });
        const auto removed = remove("/tree", 3);
        second.join();
        for (const auto& result : {removed, other}) {
            EXPECT_TRUE(result || result.error() == std::errc::no_such_file_or_directory)
                << result.error().message();
        }
        ASSERT_FALSE(mac_.contains("/tree"));
    }
}

}  // namespace
}  // namespace orvane::test
