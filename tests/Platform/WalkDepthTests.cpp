#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "Platform/FileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeBuilding.h"
#include "tests/Fixtures/TreeVisit.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr int hugeDepth = 100'000;

std::set<std::string> walked(const TestVolume& mac, const std::string& path) {
    std::set<std::string> visited;
    visitTree(mac, path, {}, [&](const WalkEntry& entry) {
        EXPECT_TRUE(visited.emplace(entry.relativePath).second) << entry.relativePath << " came twice";
    });
    return visited;
}

std::set<std::string> listed(const std::string& folder) {
    std::set<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        found.insert(entry.path().string().substr(folder.size() + 1));
    }
    return found;
}

/// The most memory that this process has held so far, in kilobytes.
long peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// The trees are removed as well, and one that is deep is where a removal can go wrong.
class WalkDepth {
  protected:
    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(WalkDepth, FindsTheSameAsTheStandardLibraryHoweverWideAndDeep) {
    const auto top = mac_.makeDirectory("/top");
    const int made = makeWideDeepTree(top, 12, 90);
    const auto visited = walked(mac_, "/top");
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(made));
    EXPECT_EQ(visited, listed(top));
}

PRIVATE_MOUNTS_TEST(WalkDepth, ComesBackToFoldersThatItHadToClose) {
    const auto top = mac_.makeDirectory("/top");
    // Every level of the first chain holds a chain of its own that is deeper than what stays open.
    std::string folder = top;
    for (int level = 0; level < 10; ++level) {
        makeDeepTree(folder, 40, "side");
        folder += "/main";
        fs::create_directory(folder);
    }
    EXPECT_EQ(walked(mac_, "/top"), listed(top));
}

PRIVATE_MOUNTS_TEST(WalkDepth, ForgetsNothingOfTheLargeFoldersThatItHadToClose) {
    std::string folder = "/top";
    // More names than the kernel gives at once, before and after the way down, in every folder that is
    // closed.
    const auto makeFiles = [&](const std::string& prefix) {
        const std::string rest(200, 'n');
        for (int i = 0; i < 300; ++i) mac_.makeFile(folder + prefix + std::to_string(i) + rest);
    };
    for (int level = 0; level < 5; ++level) {
        makeFiles("/a");
        mac_.makeDirectory(folder + "/d");
        makeFiles("/z");
        folder += "/d";
    }
    makeDeepTree(mac_.machinePath(folder), 40);
    EXPECT_EQ(walked(mac_, "/top"), listed(mac_.machinePath("top")));
}

PRIVATE_MOUNTS_TEST(WalkDepth, NeedsFewDescriptorsAndTakesWhatItIsGiven) {
    const auto top = mac_.makeDirectory("/top");
    makeWideDeepTree(top, 4, 60);
    const auto expected = listed(top);
    for (const unsigned spare : {3U, 4U, 10U, 40U}) {
        inChildProcess([&] {
            limitDescriptors(highestDescriptor() + 1 + spare);
            EXPECT_EQ(walked(mac_, "/top"), expected) << "with " << spare << " descriptors to spare";
        });
    }
}

PRIVATE_MOUNTS_TEST(WalkDepth, ReachesTheBottomOfAHugeDepthInBoundedMemory) {
    makeDeepTree(mac_.makeDirectory("/top"), hugeDepth);
    inChildProcess([&] {
        limitDescriptors(highestDescriptor() + 40);
        const long before = peakMemory();
        int folders = 0;
        std::size_t longest = 0;
        visitTree(mac_, "/top", {}, [&](const WalkEntry& entry) {
            folders += entry.isRegularFile ? 0 : 1;
            longest = std::max(longest, entry.relativePath.size());
        });
        EXPECT_EQ(folders, hugeDepth);
        EXPECT_EQ(longest, 2UL * hugeDepth + 4) << "the path of the file at the bottom, d/d/.../file";
        EXPECT_LT(peakMemory() - before, 64 * 1024);
    });
    EXPECT_TRUE(removeItem(mac_.files(), url("/top")));
}

PRIVATE_MOUNTS_TEST(WalkDepth, GoesBelowTheLongestPathWithTheLongestNames) {
    makeDeepTree(mac_.makeDirectory("/top"), 100, std::string(255, 'n'));
    std::size_t longest = 0;
    visitTree(mac_, "/top", {},
              [&](const WalkEntry& entry) { longest = std::max(longest, entry.relativePath.size()); });
    EXPECT_EQ(longest, 100 * 256 + 4U);
    EXPECT_TRUE(removeItem(mac_.files(), url("/top")));
}

PRIVATE_MOUNTS_TEST(WalkDepth, EndsWhereTheWayBackIsLost) {
    const auto top = mac_.makeDirectory("/top");
    makeDeepTree(top, 60);
    mac_.makeFile("/elsewhere/secret");
    const auto moved = top + "/d/d/d";
    int visited = 0;
    visitTree(mac_, "/top", {}, [&](const WalkEntry& entry) {
        ++visited;
        EXPECT_EQ(entry.relativePath.find("secret"), std::string_view::npos);
        if (std::count(entry.relativePath.begin(), entry.relativePath.end(), '/') == 50) {
            fs::rename(moved, mac_.machinePath("/elsewhere/d"));
        }
    });
    EXPECT_EQ(visited, 61);
    EXPECT_TRUE(mac_.contains("/elsewhere/secret"));
}

}  // namespace
}  // namespace orvane::test
