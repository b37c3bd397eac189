// The trees are gone through by several threads at once; what they find is held against one thread's walk.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <atomic>
#include <filesystem>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "Platform/FileManager.h"
#include "Platform/Posix/DirectoryStack.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeBuilding.h"
#include "tests/Fixtures/TreeVisit.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr WalkOptions likeBundles{.skipsHiddenFiles = true, .skipsPackageDescendants = true};

/// Sums in the form that they are compared in.
using Sizes = std::vector<std::int64_t>;

Sizes measured(const TestVolume& mac, const std::vector<std::string>& paths, int threadCount,
               WalkOptions options = {}) {
    std::vector<FileURL> folders;
    for (const auto& path : paths) folders.push_back(url(path));
    const auto found = mac.files().allocatedSizes(folders, options, [&](FunctionRef<void()> work) {
        std::vector<std::jthread> others;
        for (int i = 1; i < threadCount; ++i) others.emplace_back(work);
        work();
    });
    Sizes sizes;
    for (const auto& sum : found) {
        EXPECT_EQ(sum.fileAllocatedSize, sum.totalFileAllocatedSize);
        sizes.push_back(sum.fileAllocatedSize);
    }
    return sizes;
}

Sizes walked(const TestVolume& mac, const std::vector<std::string>& paths, WalkOptions options = {}) {
    Sizes sizes;
    for (const auto& path : paths) {
        auto& sum = sizes.emplace_back(0);
        visitTree(mac, path, options,
                  [&](const WalkEntry& entry) { sum += entry.fileAllocatedSize.value_or(0); });
    }
    return sizes;
}

std::string kilobytes(int count) {
    return std::string(static_cast<std::size_t>(count) * 1024, 'x');
}

/// Folders of all kinds with whatever can lie in one, a few levels deep.
class RandomTrees {
  public:
    RandomTrees(const TestVolume& mac, unsigned seed) : mac_(mac), random_(seed) {}

    void fill(const std::string& folder, int levels) {
        std::string lastFile;
        for (int i = pick(7); i > 0; --i) {
            const auto path = folder + "/" + (pick(5) == 0 ? "." : "") + std::to_string(i);
            switch (pick(8)) {
                case 0:
                    mac_.makeLink(path, pick(2) == 0 ? "." : mac_.machinePath("/elsewhere"));
                    break;
                case 1:
                    if (!lastFile.empty()) fs::create_hard_link(lastFile, mac_.machinePath(path));
                    break;
                case 2:
                    mac_.makeFIFO(path);
                    break;
                case 3:
                case 4:
                    lastFile = mac_.makeFile(path, kilobytes(pick(12)));
                    break;
                default:
                    const auto child = path + (pick(4) == 0 ? ".app" : "");
                    mac_.makeDirectory(child);
                    if (levels > 0) fill(child, levels - 1);
            }
        }
    }

  private:
    int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    const TestVolume& mac_;
    std::mt19937 random_;
};

class TreeSizes {
  protected:
    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(TreeSizes, OfThousandsOfTreesAreThoseOfOneThread) {
    mac_.makeFile("/elsewhere/file", kilobytes(512));
    RandomTrees trees(mac_, 11);
    std::vector<std::string> paths;
    for (int i = 0; i < 3000; ++i) {
        paths.push_back("/trees/" + std::to_string(i));
        mac_.makeDirectory(paths.back());
        trees.fill(paths.back(), i % 7);
    }
    for (const WalkOptions options : {WalkOptions{}, WalkOptions{.skipsHiddenFiles = true}, likeBundles}) {
        const auto expected = walked(mac_, paths, options);
        EXPECT_GT(std::set<std::int64_t>(expected.begin(), expected.end()).size(), 20U);
        for (const int count : {1, 2, 16}) EXPECT_EQ(measured(mac_, paths, count, options), expected);
        // As one tree, which is shared from the first folder on.
        for (const int count : {1, 2, 16}) {
            EXPECT_EQ(measured(mac_, {"/trees"}, count, options), walked(mac_, {"/trees"}, options));
        }
    }
}

PRIVATE_MOUNTS_TEST(TreeSizes, OfAFileWithTwoNamesCountBoth) {
    const auto file = mac_.makeFile("/top/a/file", kilobytes(64));
    mac_.makeDirectory("/top/b");
    fs::create_hard_link(file, mac_.machinePath("/top/b/file"));
    EXPECT_EQ(measured(mac_, {"/top", "/top/a"}, 4), (Sizes{2 * 65536, 65536}));
}

PRIVATE_MOUNTS_TEST(TreeSizes, OfWhatIsNoRealFolderAreNothing) {
    mac_.makeFile("/folder/file", kilobytes(4));
    mac_.makeLink("/link", "folder");
    mac_.makeFIFO("/fifo");
    EXPECT_EQ(measured(mac_, {"/folder/file", "/link", "/fifo", "/missing", "/folder"}, 4),
              (Sizes{0, 0, 0, 0, 4096}));
    EXPECT_EQ(measured(mac_, {}, 4), Sizes{});
}

PRIVATE_MOUNTS_TEST(TreeSizes, CountWhatIsMountedInsideAsOneThreadDoes) {
    mac_.makeFile("/top/a/file", kilobytes(4));
    const auto mounted = mac_.makeDirectory("/top/mounted");
    ASSERT_EQ(::mount("none", mounted.c_str(), "tmpfs", 0, nullptr), 0);
    mac_.makeFile("/top/mounted/deeper/file", kilobytes(8));
    EXPECT_EQ(measured(mac_, {"/top"}, 4), walked(mac_, {"/top"}));
    EXPECT_EQ(measured(mac_, {"/top"}, 4), Sizes{12 * 1024});
    ::umount(mounted.c_str());
}

PRIVATE_MOUNTS_TEST(TreeSizes, LeaveOutWhatMayNotBeReadAndNothingElse) {
    mac_.makeFile("/top/closed/file", kilobytes(4));
    mac_.makeFile("/top/listed/file", kilobytes(8));
    mac_.makeFile("/top/open/deeper/file", kilobytes(16));
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac_.machinePath("/top/closed").c_str(), 0000), 0);
        ASSERT_EQ(::chmod(mac_.machinePath("/top/listed").c_str(), 0400), 0);
        EXPECT_EQ(measured(mac_, {"/top", "/top/closed", "/top/open"}, 4), (Sizes{16384, 0, 16384}));
    });
}

PRIVATE_MOUNTS_TEST(TreeSizes, AreTheSameHoweverFewDescriptorsThereAre) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
    makeWideDeepTree(mac_.makeDirectory("/top"), 6, 60);
    const std::vector<std::string> paths{"/top", "/top", "/missing", "/top"};
    const auto expected = walked(mac_, paths);
    EXPECT_GT(expected.front(), 0);
    for (const unsigned spare : {3U, 4U, 10U, 40U, 100U}) {
        inChildProcess([&] {
            limitDescriptors(highestDescriptor() + 1 + spare);
            EXPECT_EQ(measured(mac_, paths, 16), expected) << "with " << spare << " descriptors to spare";
        });
    }
}

PRIVATE_MOUNTS_TEST(TreeSizes, KeepFewFoldersOpenHoweverManyThereAre) {
    // Many side by side, with so many levels below each that one thread's share is full as well.
    const auto top = mac_.makeDirectory("/top");
    makeWideDeepTree(top, 200, 40);
    constexpr int threadCount = 2;
    const auto openDescriptors = [] {
        const fs::directory_iterator all("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    };
    const auto expected = walked(mac_, {"/top"});
    std::size_t least = openDescriptors();
    std::size_t most = 0;
    onCue(
        {SYS_openat},
        [&](const PendingCall&) {
            const auto open = openDescriptors();
            least = std::min(least, open);
            most = std::max(most, open);
            return proceed;
        },
        [&] { EXPECT_EQ(measured(mac_, {"/top"}, threadCount), expected); });
    EXPECT_GT(most - least, 30U) << "nothing was left to other threads";
    EXPECT_LE(most - least, threadCount * (DirectoryStack::maximumOpenFolders + 1) + 32);
}

PRIVATE_MOUNTS_TEST(TreeSizes, ReachTheBottomOfAHugeDepthInBoundedMemory) {
    constexpr int hugeDepth = 100'000;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    // A sanitizer keeps what has been freed, up to a quarter of a gigabyte.
    constexpr long mostKilobytes = 512L * 1024;
#else
    constexpr long mostKilobytes = 64L * 1024;
#endif
    makeDeepTree(mac_.makeDirectory("/top"), hugeDepth);
    inChildProcess([&] {
        limitDescriptors(highestDescriptor() + 40);
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const long before = usage.ru_maxrss;
        EXPECT_EQ(measured(mac_, {"/top"}, 4), Sizes{4096});
        ::getrusage(RUSAGE_SELF, &usage);
        EXPECT_LT(usage.ru_maxrss - before, mostKilobytes);
    });
    EXPECT_TRUE(removeItem(mac_.files(), url("/top")));
}

PRIVATE_MOUNTS_TEST(TreeSizes, CountWhatLiesBelowAFolderThatIsMovedMeanwhile) {
    for (const int threadCount : {1, 2}) {
        makeDeepTree(mac_.makeDirectory("/top"), 60);
        mac_.makeDirectory("/elsewhere");
        int folders = 0;
        Sizes sizes;
        onCue(
            {SYS_openat},
            [&](const PendingCall&) {
                // One of the folders on the way down is moved when another one further down is opened.
                if (++folders == 50) {
                    fs::rename(mac_.machinePath("/top/d/d/d"), mac_.machinePath("/elsewhere/d"));
                }
                return proceed;
            },
            [&] { sizes = measured(mac_, {"/top"}, threadCount); });
        EXPECT_GE(folders, 60);
        EXPECT_EQ(sizes, Sizes{4096}) << "the file at the bottom";
        fs::remove_all(mac_.machinePath("/top"));
        fs::remove_all(mac_.machinePath("/elsewhere"));
    }
}

/// A tree that is changed by others while two threads measure it. What lies elsewhere is larger than all of
/// it.
class TreeSizesRace {
  protected:
    TreeSizesRace() {
        for (const std::string folder : {"a", "b", "c", "d"}) {
            mac_.makeFile("/top/" + folder + "/file", kilobytes(4));
            mac_.makeFile("/top/" + folder + "/deeper/file", kilobytes(4));
        }
        mac_.makeFile("/elsewhere/file", kilobytes(1024));
        mac_.makeFile("/elsewhere/deeper/file", kilobytes(1024));
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    /// What is measured when `change` is made the moment before the call that asks for that name.
    template <typename Change>
    Sizes measuredWhile(long call, const std::string& name, Change change) {
        Sizes sizes;
        bool isChanged = false;
        onCue(
            {call},
            [&](const PendingCall& pending) {
                if (!isChanged && pending.text(1) == name) {
                    isChanged = true;
                    change();
                }
                return proceed;
            },
            [&] { sizes = measured(mac_, {"/top"}, 2); });
        EXPECT_TRUE(isChanged);
        return sizes;
    }

    static constexpr std::int64_t one = 4096;
    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(TreeSizesRace, AFolderThatVanishesIsLeftOut) {
    EXPECT_EQ(measuredWhile(SYS_openat, "b", [&] { fs::remove_all(at("/top/b")); }), Sizes{6 * one});
}

PRIVATE_MOUNTS_TEST(TreeSizesRace, AFolderThatBecomesALinkIsNotFollowed) {
    EXPECT_EQ(measuredWhile(SYS_openat, "b",
                            [&] {
                                fs::remove_all(at("/top/b"));
                                mac_.makeLink("/top/b", at("/elsewhere"));
                            }),
              Sizes{6 * one});
}

PRIVATE_MOUNTS_TEST(TreeSizesRace, AFolderThatBecomesAFileIsLeftOut) {
    EXPECT_EQ(measuredWhile(SYS_openat, "b",
                            [&] {
                                fs::remove_all(at("/top/b"));
                                mac_.makeFile("/top/b", kilobytes(1024));
                            }),
              Sizes{6 * one});
}

PRIVATE_MOUNTS_TEST(TreeSizesRace, AFolderThatIsMovedOnceItIsOpenStillCounts) {
    bool isMoved = false;
    Sizes sizes;
    onCue(
        {SYS_getdents64},
        [&](const PendingCall& call) {
            if (!isMoved && call.nameOf(0) == "b") {
                fs::rename(at("/top/b"), at("/elsewhere/b"));
                isMoved = true;
            }
            return proceed;
        },
        [&] { sizes = measured(mac_, {"/top"}, 2); });
    EXPECT_TRUE(isMoved);
    EXPECT_EQ(sizes, Sizes{8 * one});
}

PRIVATE_MOUNTS_TEST(TreeSizesRace, AFileThatBecomesALinkIsNotFollowed) {
    int replaced = 0;
    const auto sizes = measuredWhile(SYS_newfstatat, "file", [&] {
        for (const std::string folder : {"a", "b", "c", "d"}) {
            for (const std::string file : {"/file", "/deeper/file"}) {
                fs::remove(at("/top/" + folder + file));
                mac_.makeLink("/top/" + folder + file, at("/elsewhere/file"));
                ++replaced;
            }
        }
    });
    EXPECT_EQ(replaced, 8);
    EXPECT_EQ(sizes, Sizes{0});
}

PRIVATE_MOUNTS_TEST(TreeSizesRace, NothingElsewhereEverCountsWhileFoldersAndLinksTakeTurns) {
    mac_.makeLink("/top/link", at("/elsewhere"));
    std::atomic<bool> isOver = false;
    std::jthread swapper([&] {
        for (unsigned i = 0; !isOver; ++i) {
            exchangeEntries(at(std::string("/top/") + "abcd"[i % 4]), at("/top/link"));
        }
    });
    for (int round = 0; round < 500; ++round) {
        const auto size = measured(mac_, {"/top"}, 4).front();
        EXPECT_LE(size, 16 * one);
    }
    isOver = true;
}

}  // namespace
}  // namespace orvane::test
