#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Platform/FileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// Removes a tree as a program does that looks first and then acts, each time by the path.
void removeNaively(const fs::path& path) {
    std::error_code ignored;
    if (fs::symlink_status(path, ignored).type() == fs::file_type::directory) {
        std::vector<fs::path> children;
        for (auto it = fs::directory_iterator(path, ignored); it != fs::directory_iterator();
             it.increment(ignored)) {
            children.push_back(it->path());
        }
        for (const auto& child : children) removeNaively(child);
        ::rmdir(path.c_str());
    } else {
        ::unlink(path.c_str());
    }
}

/// A tree to remove in which a thread keeps swapping a folder for a link to another tree.
class RemovalRace {
  protected:
    static constexpr int files = 20;

    /// Whether the other tree lost anything while `remove` removed this one.
    template <typename Remove>
    bool losesFiles(Remove remove) {
        const auto precious = mac_.makeDirectory("/precious");
        for (int i = 0; i < files; ++i) {
            mac_.makeFile("/tree/folder/" + std::to_string(i));
            mac_.makeFile("/precious/" + std::to_string(i));
        }
        const auto folder = mac_.machinePath("/tree/folder");
        const auto link = mac_.makeLink("/tree/link", precious);
        std::atomic<bool> isOver = false;
        std::thread swapper([&] {
            // Ends by itself when one of the two is gone.
            try {
                while (!isOver) exchangeEntries(folder, link);
            } catch (const std::system_error&) {
            }
        });
        remove();
        isOver = true;
        swapper.join();
        const auto left = std::distance(fs::directory_iterator(precious), {});
        fs::remove_all(mac_.machinePath("/tree"));
        return left != files;
    }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(RemovalRace, AFolderSwappedForALinkNeverLeadsOutOfTheTree) {
    for (int round = 0; round < 1000; ++round) {
        ASSERT_FALSE(losesFiles([&] { static_cast<void>(mac_.files().removeItem(url("/tree"))); }));
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    bool hasLost = false;
    while (!hasLost && std::chrono::steady_clock::now() < deadline) {
        hasLost = losesFiles([&] { removeNaively(mac_.machinePath("/tree")); });
    }
    if (!hasLost) GTEST_SKIP() << "this machine was too busy: the swapping thread proved nothing";
}

PRIVATE_MOUNTS_TEST(RemovalRace, AFolderThatKeepsFillingUpDoesNotHoldTheRemoval) {
    mac_.makeFile("/tree/busy/file");
    const auto busy = mac_.machinePath("/tree/busy/");
    std::atomic<bool> isOver = false;
    std::atomic<int> made = 0;
    std::thread filler([&] {
        while (!isOver) {
            std::ofstream(busy + std::to_string(made)) << "x";
            ++made;
        }
    });
    while (made < 100) std::this_thread::yield();
    const auto removed = mac_.files().removeItem(url("/tree"));
    isOver = true;
    filler.join();
    if (!removed) {
        EXPECT_EQ(removed.error(), std::errc::directory_not_empty);
    } else {
        EXPECT_FALSE(mac_.contains("/tree"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalRace, TwoRemovalsOfOneTreeDoNotDisturbEachOther) {
    for (int round = 0; round < 50; ++round) {
        for (int i = 0; i < 100; ++i) {
            mac_.makeFile("/tree/" + std::to_string(i % 10) + "/" + std::to_string(i));
        }
        Result<void> other;
        std::thread second([&] { other = mac_.files().removeItem(url("/tree")); });
        const auto removed = mac_.files().removeItem(url("/tree"));
        second.join();
        for (const auto& result : {removed, other}) {
            EXPECT_TRUE(result || result.error() == std::errc::no_such_file_or_directory);
        }
        EXPECT_TRUE(removed || other);
        ASSERT_FALSE(mac_.contains("/tree"));
    }
}

}  // namespace
}  // namespace orvane::test
