#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "Platform/FileManager.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr int threads = 4;
constexpr int itemsPerThread = 50;

/// Looks for a free name and takes it, as a program does that trusts what it saw a moment ago.
void trashNaively(const TestVolume& mac, const std::string& item) {
    const auto trash = mac.machinePath(TestVolume::trash());
    fs::create_directories(trash);
    auto place = trash + "/Foo.app";
    for (int number = 2; fs::exists(place); ++number)
        place = trash + "/Foo " + std::to_string(number) + ".app";
    std::error_code ignored;
    fs::rename(mac.machinePath(item), place, ignored);
}

class TrashRace {};

/// How many items of the same name are still there after four threads have moved them to the Trash.
template <typename MoveToTrash>
std::size_t survivors(MoveToTrash moveToTrash) {
    const TestVolume mac;
    const auto pathOf = [](int thread, int item) {
        return "/" + std::to_string(thread) + "/" + std::to_string(item) + "/Foo.app";
    };
    for (int thread = 0; thread < threads; ++thread) {
        for (int item = 0; item < itemsPerThread; ++item) {
            mac.makeFile(pathOf(thread, item), pathOf(thread, item));
        }
    }
    std::atomic<int> waiting = threads;
    std::array<std::thread, threads> movers;
    for (int thread = 0; thread < threads; ++thread) {
        movers[static_cast<std::size_t>(thread)] = std::thread([&, thread] {
            --waiting;
            while (waiting > 0) std::this_thread::yield();
            for (int item = 0; item < itemsPerThread; ++item) moveToTrash(mac, pathOf(thread, item));
        });
    }
    for (auto& mover : movers) mover.join();
    std::set<std::string> contents;
    for (const auto& entry : fs::directory_iterator(mac.machinePath(TestVolume::trash()))) {
        contents.insert(readFile(entry.path().string()));
    }
    return contents.size();
}

PRIVATE_MOUNTS_TEST(TrashRace, FourThreadsWithItemsOfOneNameLoseNone) {
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(survivors([](const TestVolume& mac, const std::string& item) {
                      EXPECT_TRUE(mac.files().trashItem(TestVolume::url(item)));
                  }),
                  std::size_t{threads * itemsPerThread});
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    bool hasLost = false;
    while (!hasLost && std::chrono::steady_clock::now() < deadline) {
        hasLost = survivors(trashNaively) < std::size_t{threads * itemsPerThread};
    }
    if (!hasLost) GTEST_SKIP() << "this machine was too busy: the four threads proved nothing";
}

}  // namespace
}  // namespace orvane::test
