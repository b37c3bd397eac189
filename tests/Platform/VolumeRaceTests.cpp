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
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

TEST(VolumeRace, ALinkThatAppearsOnTheWayNeverLeadsOutside) {
    const TestVolume mac;
    mac.makeOutsideFile("file", "outside");
    mac.makeFile("/folder/file", "inside");
    mac.makeLink("/link", mac.outside());
    const auto folder = mac.machinePath("folder");
    const auto link = mac.machinePath("link");
    std::atomic<bool> isOver = false;
    std::thread swapper([&] {
        while (!isOver) exchangeEntries(folder, link);
    });

    // Joining the root and the path is what a program does that knows no better.
    const auto naive = [&] { return FileDescriptor(::open((folder + "/file").c_str(), O_RDONLY)); };
    const auto ours = [&] {
        auto file = mac.volume()->openPath("/folder/file", O_RDONLY);
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

TEST(VolumeRace, RenamesElsewhereDoNotDisturbAResolution) {
    const TestVolume mac;
    mac.makeFile("/a/b/file");
    mac.makeLink("/up", "a/b/../b/../../a/b/../b/file");
    mac.makeDirectory("/elsewhere/one");
    const auto one = mac.machinePath("elsewhere/one");
    const auto two = mac.machinePath("elsewhere/two");
    std::atomic<bool> isOver = false;
    std::thread renamer([&] {
        while (!isOver) {
            fs::rename(one, two);
            fs::rename(two, one);
        }
    });
    int failures = 0;
    for (int round = 0; round < 20'000; ++round) failures += mac.volume()->openPath("/up", O_PATH) ? 0 : 1;
    isOver = true;
    renamer.join();
    EXPECT_EQ(failures, 0);
}

TEST(VolumeKernel, RefusesARootThatItCannotKeepInside) {
    const TestVolume mac;
    inChildProcess([&] {
        forbidSystemCall(SYS_openat2, ENOSYS);
        EXPECT_EQ(Volume::open(mac.machinePath("/")).error(), std::errc::function_not_supported);
        const auto machine = Volume::open("/");
        ASSERT_TRUE(machine);
        EXPECT_TRUE((*machine)->openPath("/proc", O_PATH));
    });
}

TEST(VolumeKernel, LinksOfTheKernelsOwnDoNotLeadOutside) {
    if (!mayMount()) GTEST_SKIP() << "nothing can be mounted here";
    const TestVolume mac;
    const auto secret = mac.makeOutsideFile("secret");
    const auto proc = mac.makeDirectory("/proc");
    inChildProcess([&] {
        enterOwnMountNamespace();
        ASSERT_EQ(::mount("/proc", proc.c_str(), nullptr, MS_BIND | MS_REC, nullptr), 0);
        ASSERT_EQ(::access((proc + "/self/root" + secret).c_str(), F_OK), 0);
        // A volume that is open already lies in the namespace where nothing was mounted.
        const auto volume = Volume::open(mac.machinePath("/")).value();
        const auto opened = volume->openPath("/proc/self/root" + secret, O_PATH);
        EXPECT_EQ(opened.error(), std::errc::too_many_symbolic_link_levels);
        EXPECT_FALSE(volume->machinePath("/proc/self/root" + secret));
    });
}

}  // namespace
}  // namespace orvane::test
