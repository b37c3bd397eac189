#include "Platform/Linux/RootOwned.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Linux/PolkitRunner.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane {
namespace {

TEST(RootOwned, ProgramsOfTheSystemAre) {
    EXPECT_TRUE(isRootsOwnProgram("/usr/bin/env"));
}

TEST(RootOwned, WhatAUserMadeIsNot) {
    const test::TemporaryDirectory directory;
    const auto program = directory.makeFile("program");
    ::chmod(program.c_str(), 0755);
    // As root, too: everybody can write to the folder for temporary files.
    EXPECT_FALSE(isRootsOwnProgram(program));
}

TEST(RootOwned, WhatIsNoProgramIsNot) {
    for (const auto* const path :
         {"", "usr/bin/env", "/", "/usr/bin", "/etc/passwd", "/dev/null", "/nowhere/x"}) {
        EXPECT_FALSE(isRootsOwnProgram(path)) << path;
    }
}

/// A folder that only root could get at, were it not for what each test changes.
class RootOwnedChain : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::isRoot() || !test::mayMount()) GTEST_SKIP() << "only root can make what belongs to root";
    }

    /// What is said of /mnt/folder/program after the change, which is made on a file system of its own.
    static void expectAfter(bool isRootsOwn, FunctionRef<void()> change) {
        test::inChildProcess([&] {
            test::enterOwnMountNamespace();
            ASSERT_EQ(::mount("tmpfs", "/mnt", "tmpfs", 0, "mode=755"), 0);
            ::umask(022);
            ASSERT_EQ(::mkdir(folder, 0755), 0);
            ASSERT_EQ(::symlink("/usr/bin/env", "/mnt/folder/link"), 0);
            ASSERT_EQ(::symlink("/mnt/folder", "/mnt/way"), 0);
            ASSERT_EQ(::mknod(program, S_IFREG | 0755, 0), 0);
            change();
            EXPECT_EQ(isRootsOwnProgram(program), isRootsOwn);
        });
    }

    static constexpr const char* folder = "/mnt/folder";
    static constexpr const char* program = "/mnt/folder/program";
};

TEST_F(RootOwnedChain, HoldsWhereOnlyRootCanWrite) {
    expectAfter(true, [] {});
}

TEST_F(RootOwnedChain, BreaksWhereAGroupOrOthersCanWrite) {
    for (const auto* const path : {program, folder, "/mnt"}) {
        for (const mode_t mode : {0775U, 0757U, 01777U}) {
            expectAfter(false, [&] { ASSERT_EQ(::chmod(path, mode), 0); });
        }
    }
}

TEST_F(RootOwnedChain, BreaksWhereItBelongsToSomebodyElse) {
    for (const auto* const path : {program, folder, "/mnt"}) {
        expectAfter(false, [&] { test::giveToUnprivilegedUser(path); });
    }
}

TEST_F(RootOwnedChain, BreaksAtALink) {
    expectAfter(true, [] {
        EXPECT_FALSE(isRootsOwnProgram("/mnt/folder/link"));
        EXPECT_FALSE(isRootsOwnProgram("/mnt/way/program"));
    });
}

TEST(InstalledRootPart, ItsPlaceIsFixed) {
    EXPECT_TRUE(installedRootPart().ends_with("/libexec/orvane/orvane-remove-as-root"));
}

}  // namespace
}  // namespace orvane
