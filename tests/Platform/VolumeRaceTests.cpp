#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/openat2.h>
#include <sys/mount.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "Platform/Posix/Volume.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class VolumeRace {
  protected:
    TestVolume mac_;
};

class VolumeKernel : protected VolumeRace {};

PRIVATE_MOUNTS_TEST(VolumeRace, ALinkThatAppearsOnTheWayNeverLeadsOutside) {
    mac_.makeOutsideFile("file", "outside");
    mac_.makeFile("/folder/file", "inside");
    mac_.makeLink("/link", mac_.outside());
    const auto folder = mac_.machinePath("folder");
    const auto link = mac_.machinePath("link");
    std::atomic<bool> isOver = false;
    std::thread swapper([&] {
        while (!isOver) exchangeEntries(folder, link);
    });

    // Joining the root and the path is what a program does that knows no better.
    const auto naive = [&] { return FileDescriptor(::open((folder + "/file").c_str(), O_RDONLY)); };
    const auto ours = [&] {
        auto file = mac_.volume()->openPath("/folder/file", O_RDONLY);
        return file ? std::move(*file) : FileDescriptor();
    };
    const auto leadsOutside = [](const FileDescriptor& file) {
        char first = 0;
        return file && ::read(file.get(), &first, 1) == 1 && first == 'o';
    };
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int naiveLosses = 0;
    int losses = 0;
    for (int round = 0; round < 5000 || (naiveLosses == 0 && std::chrono::steady_clock::now() < deadline);
         ++round) {
        losses += leadsOutside(ours()) ? 1 : 0;
        naiveLosses += leadsOutside(naive()) ? 1 : 0;
    }
    isOver = true;
    swapper.join();
    EXPECT_EQ(losses, 0);
    if (naiveLosses == 0) GTEST_SKIP() << "this machine was too busy: the swapping thread proved nothing";
}

PRIVATE_MOUNTS_TEST(VolumeRace, RenamesElsewhereDoNotDisturbAResolution) {
    mac_.makeFile("/a/b/file");
    mac_.makeLink("/up", "a/b/../b/../../a/b/../b/file");
    mac_.makeDirectory("/elsewhere/one");
    const auto one = mac_.machinePath("elsewhere/one");
    const auto two = mac_.machinePath("elsewhere/two");
    std::atomic<bool> isOver = false;
    std::thread renamer([&] {
        while (!isOver) {
            fs::rename(one, two);
            fs::rename(two, one);
        }
    });
    int failures = 0;
    for (int round = 0; round < 20'000; ++round) failures += mac_.volume()->openPath("/up", O_PATH) ? 0 : 1;
    isOver = true;
    renamer.join();
    EXPECT_EQ(failures, 0);
}

PRIVATE_MOUNTS_TEST(VolumeKernel, RefusesARootThatItCannotKeepInside) {
    forbidSystemCall(SYS_openat2, ENOSYS);
    EXPECT_EQ(Volume::open(mac_.machinePath("/")).error(), std::errc::function_not_supported);
    const auto machine = Volume::open("/");
    ASSERT_TRUE(machine);
    EXPECT_TRUE((*machine)->openPath("/proc", O_PATH));
}

PRIVATE_MOUNTS_TEST(VolumeKernel, LinksOfTheKernelsOwnDoNotLeadOutside) {
    const auto secret = mac_.makeOutsideFile("secret");
    const auto proc = mac_.makeDirectory("/proc");
    ASSERT_EQ(::mount("/proc", proc.c_str(), nullptr, MS_BIND | MS_REC, nullptr), 0);
    ASSERT_EQ(::access((proc + "/self/root" + secret).c_str(), F_OK), 0);
    const auto opened = mac_.volume()->openPath("/proc/self/root" + secret, O_PATH);
    EXPECT_EQ(opened.error(), std::errc::too_many_symbolic_link_levels);
    EXPECT_FALSE(mac_.volume()->machinePath("/proc/self/root" + secret));
    ASSERT_EQ(::umount2(proc.c_str(), MNT_DETACH), 0) << "the volume must not be removed with all of it";
}

PRIVATE_MOUNTS_TEST(VolumeKernel, WhatIsMountedOverHasNoMachinePathThoughItsNameLeadsSomewhere) {
    mac_.makeFile("/folder/file");
    mac_.makeOutsideFile("folder/file", "another");
    ASSERT_EQ(mac_.volume()->machinePath("/folder/file"), mac_.machinePath("folder/file"));
    const auto root = mac_.machinePath("/");
    ASSERT_EQ(::mount(mac_.outside().c_str(), root.c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(readFile(root + "folder/file"), "another");
    EXPECT_EQ(mac_.volume()->machinePath("/folder/file").error(), std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace orvane::test
