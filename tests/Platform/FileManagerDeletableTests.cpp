#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "Platform/FileManager.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

class Deletable : public testing::Test {
  protected:
    bool isDeletable(const std::string& path) const { return mac_.files().isDeletableFile(url(path)); }

    void own(const std::string& path, uid_t user) const {
        ASSERT_EQ(::lchown(mac_.machinePath(path).c_str(), user, user), 0) << path;
    }

    TestVolume mac_;
};

TEST_F(Deletable, TheRootIsNotNorIsAnythingThatIsNotThere) {
    mac_.makeFile("/file");
    for (const std::string path : {"/", "/.", "/..", "/missing", "/missing/file", "/file/file"}) {
        EXPECT_FALSE(isDeletable(path)) << path;
    }
    EXPECT_TRUE(isDeletable("/file"));
}

TEST_F(Deletable, ADanglingLinkIsWhateverItsTargetIs) {
    mac_.makeLink("/dangling", "nothing");
    mac_.makeLink("/outside", mac_.outside());
    EXPECT_TRUE(isDeletable("/dangling"));
    EXPECT_TRUE(isDeletable("/outside"));
}

TEST_F(Deletable, IsAskedOfTheFolderBehindALink) {
    mac_.makeFile("/real/file");
    mac_.makeLink("/link", "/real");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        EXPECT_TRUE(isDeletable("/link/file"));
        ASSERT_EQ(::chmod(mac_.machinePath("/real").c_str(), 0500), 0);
        EXPECT_FALSE(isDeletable("/link/file"));
        EXPECT_TRUE(isDeletable("/link"));
    });
}

TEST_F(Deletable, ContentsAreNotLookedAt) {
    mac_.makeFile("/folder/closed/file");
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        ASSERT_EQ(::chmod(mac_.machinePath("/folder/closed").c_str(), 0000), 0);
        EXPECT_TRUE(isDeletable("/folder/closed"));
    });
}

TEST_F(Deletable, RootPassesEveryPermission) {
    if (!isRoot()) GTEST_SKIP() << "asks what root may do";
    mac_.makeFile("/folder/file");
    own("/folder", unprivilegedUser());
    own("/folder/file", unprivilegedUser());
    for (const mode_t mode : {0000U, 01000U, 0500U, 01777U}) {
        ASSERT_EQ(::chmod(mac_.machinePath("/folder").c_str(), mode), 0);
        EXPECT_TRUE(isDeletable("/folder/file")) << mode;
    }
}

TEST_F(Deletable, TheRightsInForceCountAndNotThoseThatCouldBeTakenUpAgain) {
    if (!isRoot()) GTEST_SKIP() << "only root can give its rights up for a while";
    mac_.makeFile("/folder/file");
    inChildProcess([&] {
        EXPECT_TRUE(isDeletable("/folder/file"));
        ASSERT_EQ(::chmod(mac_.machinePath("/..").c_str(), 0755), 0);
        ASSERT_EQ(::setresuid(0, unprivilegedUser(), 0), 0);
        EXPECT_TRUE(mac_.files().fileExists(url("/folder/file")));
        EXPECT_FALSE(isDeletable("/folder/file"));
    });
}

TEST_F(Deletable, LockedFilesAndWhatLiesInLockedFoldersAreNot) {
    const auto file = mac_.makeFile("/folder/file");
    const auto folder = mac_.machinePath("/folder");
    if (!lock(file)) GTEST_SKIP() << "no file can be locked here";
    EXPECT_FALSE(isDeletable("/folder/file"));
    unlock(file);
    EXPECT_TRUE(isDeletable("/folder/file"));
    ASSERT_TRUE(lock(file, true));
    EXPECT_FALSE(isDeletable("/folder/file"));
    unlock(file);
    ASSERT_TRUE(lock(folder));
    EXPECT_FALSE(isDeletable("/folder/file"));
    EXPECT_FALSE(isDeletable("/folder"));
    unlock(folder);
    ASSERT_TRUE(lock(folder, true));
    EXPECT_FALSE(isDeletable("/folder/file"));
    unlock(folder);
    EXPECT_TRUE(isDeletable("/folder/file"));
}

TEST_F(Deletable, IsWhatTheKernelThenDoes) {
    if (!isRoot()) GTEST_SKIP() << "only root can make files of somebody else";
    constexpr std::array<mode_t, 12> modes{0777,  0755,  0700,  0500,  0300, 0600,
                                           01777, 01755, 01707, 01733, 0070, 0007};
    int number = 0;
    for (const auto mode : modes) {
        for (const uid_t folderOwner : {uid_t{0}, unprivilegedUser()}) {
            for (const uid_t owner : {uid_t{0}, unprivilegedUser()}) {
                const auto folder = "/" + std::to_string(++number);
                mac_.makeFile(folder + "/file");
                own(folder + "/file", owner);
                own(folder, folderOwner);
                ASSERT_EQ(::chmod(mac_.machinePath(folder).c_str(), mode), 0);
            }
        }
    }
    giveToUnprivilegedUser(mac_.machinePath("/.."));
    giveToUnprivilegedUser(mac_.machinePath("/"));
    int deletable = 0;
    asUnprivilegedUser([&] {
        for (int folder = 1; folder <= number; ++folder) {
            const auto path = "/" + std::to_string(folder) + "/file";
            const bool promised = isDeletable(path);
            deletable += promised ? 1 : 0;
            EXPECT_EQ(::unlink(mac_.machinePath(path).c_str()) == 0, promised) << path;
        }
        EXPECT_GT(deletable, 0);
        EXPECT_LT(deletable, number);
    });
}

}  // namespace
}  // namespace orvane::test
