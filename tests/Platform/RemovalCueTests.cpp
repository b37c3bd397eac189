#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <string>

#include "Platform/FileManager.h"
#include "Platform/Posix/TreeRemoval.h"
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

/// Where more than this happens a removal does not end.
constexpr int tooMany = 100'000;

/// A disk that changes, or fails, at the very call of a removal at which it matters.
class RemovalCue {
  protected:
    RemovalCue() { mac_.makeFile("/kept/precious"); }

    template <typename Director>
    Result<void> remove(std::initializer_list<long> calls, Director director) {
        Result<void> removed;
        onCue(calls, director, [&] { removed = removeItem(mac_.files(), url("/tree")); });
        return removed;
    }

    /// Removes the tree, and before the entry is removed, or opened, for the first time makes a change.
    template <typename Change>
    Result<void> removeAndBefore(const std::string& entry, Change change) {
        int cues = 0;
        auto removed = remove({SYS_unlinkat, SYS_openat2}, [&](const PendingCall& call) {
            if (call.text(1) == entry && ++cues == 1) change();
            return proceed;
        });
        EXPECT_GE(cues, 1) << entry;
        return removed;
    }

    static bool removesFolder(const PendingCall& call) {
        return call.number == SYS_unlinkat && call.arguments[2] == AT_REMOVEDIR;
    }

    void expectGone(const Result<void>& removed) const {
        EXPECT_TRUE(removed) << removed.error().message();
        EXPECT_FALSE(mac_.contains("/tree"));
        EXPECT_TRUE(mac_.contains("/kept/precious"));
    }

    void change(const std::string& path, mode_t mode) const { ASSERT_EQ(::chmod(at(path).c_str(), mode), 0); }
    mode_t modeOf(const std::string& path) const {
        struct stat status {};
        return ::lstat(at(path).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(RemovalCue, AFileThatBecameAFolderGoesWithTheNextPass) {
    mac_.makeFile("/tree/sub/entry");
    expectGone(removeAndBefore("entry", [&] {
        fs::remove(at("/tree/sub/entry"));
        mac_.makeFile("/tree/sub/entry/deeper/file");
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderThatBecameALinkGoesAsALink) {
    for (const std::string target : {"/kept", "../kept", "nothing"}) {
        mac_.makeFile("/tree/sub/file");
        expectGone(removeAndBefore("sub", [&] {
            fs::remove_all(at("/tree/sub"));
            mac_.makeLink("/tree/sub", target);
        }));
    }
    mac_.makeFile("/tree/sub/file");
    expectGone(removeAndBefore("tree", [&] {
        fs::remove_all(at("/tree"));
        mac_.makeLink("/tree", "/kept");
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, TheKernelMaySayInTwoWaysThatALinkIsNoFolder) {
    for (const int error : {ELOOP, ENOTDIR}) {
        mac_.makeFile("/tree/sub/file");
        expectGone(remove({SYS_openat2}, [&](const PendingCall& call) {
            if (call.text(1) != "sub") return proceed;
            fs::remove_all(at("/tree/sub"));
            mac_.makeLink("/tree/sub", "/kept");
            return failWith(error);
        }));
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderThatBecameAFileGoes) {
    mac_.makeFile("/tree/sub/file");
    expectGone(removeAndBefore("sub", [&] {
        fs::remove_all(at("/tree/sub"));
        mac_.makeFile("/tree/sub");
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFileThatBecameALinkGoesAsALink) {
    mac_.makeFile("/tree/entry");
    expectGone(removeAndBefore("entry", [&] {
        fs::remove(at("/tree/entry"));
        mac_.makeLink("/tree/entry", at("/kept"));
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, WhatVanishesIsRemoved) {
    const auto makeTree = [&] { mac_.makeFile("/tree/sub/file"); };
    makeTree();
    expectGone(removeAndBefore("file", [&] { fs::remove(at("/tree/sub/file")); }));
    makeTree();
    expectGone(removeAndBefore("sub", [&] { fs::remove_all(at("/tree/sub")); }));
    makeTree();
    expectGone(removeAndBefore("tree", [&] { fs::remove_all(at("/tree")); }));
    makeTree();
    expectGone(remove({SYS_unlinkat}, [&](const PendingCall& call) {
        if (removesFolder(call)) fs::remove_all(at(call.text(1) == "sub" ? "/tree/sub" : "/tree"));
        return proceed;
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderIsGoneThroughThreeTimesAndNoMore) {
    for (const int additions : {1, 2, 3, 4}) {
        SCOPED_TRACE(additions);
        mac_.makeFile("/tree/busy/file");
        int attempts = 0;
        const auto removed = remove({SYS_unlinkat}, [&](const PendingCall& call) {
            if (removesFolder(call) && call.text(1) == "busy" && ++attempts <= additions) {
                mac_.makeFile("/tree/busy/" + std::to_string(attempts));
                mac_.makeFile("/tree/busy/folder/" + std::to_string(attempts));
            }
            return proceed;
        });
        if (additions < 3) {
            EXPECT_EQ(attempts, additions + 1);
            expectGone(removed);
        } else {
            EXPECT_EQ(attempts, 3);
            EXPECT_EQ(removed.error(), std::errc::directory_not_empty);
            EXPECT_TRUE(mac_.contains("/tree/busy/3"));
        }
        fs::remove_all(at("/tree"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, AnEmptyFolderThatCannotBeRemovedIsNotGoneThroughAgain) {
    for (const int error : {EBUSY, EIO, EPERM, EACCES}) {
        mac_.makeFile("/tree/sub/file");
        int attempts = 0;
        const auto removed = remove({SYS_unlinkat}, [&](const PendingCall& call) {
            if (!removesFolder(call) || call.text(1) != "sub") return proceed;
            ++attempts;
            return failWith(error);
        });
        EXPECT_EQ(attempts, 1);
        EXPECT_EQ(removed.error().value(), error);
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, SomeDisksSayOtherwiseThatAFolderIsNotEmpty) {
    mac_.makeFile("/tree/busy/file");
    int attempts = 0;
    expectGone(remove({SYS_unlinkat}, [&](const PendingCall& call) {
        const bool isFirst = removesFolder(call) && call.text(1) == "busy" && ++attempts == 1;
        return isFirst ? failWith(EEXIST) : proceed;
    }));
    EXPECT_EQ(attempts, 2);
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFailureIsNotTriedAgainAndTheFirstIsTheReason) {
    for (const std::string folder : {"one", "two", "three"}) {
        mac_.makeFile("/tree/" + folder + "/file");
        mac_.makeFile("/tree/" + folder + "/sub/file");
        mac_.makeFile("/tree/" + folder + "/failing");
    }
    int failures = 0;
    int foldersTried = 0;
    const auto removed = remove({SYS_unlinkat}, [&](const PendingCall& call) {
        if (call.text(1) == "failing") return failWith(++failures == 1 ? EIO : EPERM);
        if (removesFolder(call)) ++foldersTried;
        return proceed;
    });
    EXPECT_EQ(removed.error(), std::errc::io_error);
    EXPECT_EQ(failures, 3);
    EXPECT_EQ(foldersTried, 3 + 3 + 1) << "each once";
    for (const std::string folder : {"one", "two", "three"}) {
        EXPECT_TRUE(mac_.contains("/tree/" + folder + "/failing"));
        EXPECT_FALSE(mac_.contains("/tree/" + folder + "/file"));
        EXPECT_FALSE(mac_.contains("/tree/" + folder + "/sub"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderThatCannotBeReadIsTheReasonAndTheRestGoes) {
    mac_.makeFile("/tree/broken/file");
    mac_.makeFile("/tree/a/file");
    mac_.makeFile("/tree/z/file");
    int reads = 0;
    const auto removed = remove({SYS_getdents64}, [&](const PendingCall& call) {
        EXPECT_LT(++reads, tooMany);
        return call.nameOf(0) == "broken" ? failWith(EIO) : proceed;
    });
    EXPECT_EQ(removed.error(), std::errc::io_error);
    EXPECT_TRUE(mac_.contains("/tree/broken/file"));
    EXPECT_FALSE(mac_.contains("/tree/a"));
    EXPECT_FALSE(mac_.contains("/tree/z"));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderThatVanishesWhileItIsReadIsRemoved) {
    mac_.makeFile("/tree/sub/file");
    expectGone(remove({SYS_getdents64}, [&](const PendingCall& call) {
        if (call.nameOf(0) == "sub") fs::remove_all(at("/tree/sub"));
        return proceed;
    }));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AnUnreadableFolderHasItsModeBackWhenItCannotBeOpenedAgain) {
    mac_.makeFile("/tree/closed/file");
    mac_.makeFile("/tree/file");
    change("/tree/closed", 0300);
    bool isAsked = false;
    mode_t modeMeanwhile = 0;
    const auto removed = remove({SYS_openat2, SYS_openat}, [&](const PendingCall& call) {
        if (call.text(1) == "closed" && !isAsked) {
            isAsked = true;
            return failWith(EACCES);
        }
        if (!isAsked || call.text(1) != ".") return proceed;
        modeMeanwhile = modeOf("/tree/closed");
        return failWith(EIO);
    });
    EXPECT_EQ(removed.error(), std::errc::io_error) << "what stood in the way in the end";
    EXPECT_EQ(modeMeanwhile, 0700U);
    EXPECT_EQ(modeOf("/tree/closed"), 0300U);
    EXPECT_TRUE(mac_.contains("/tree/closed/file"));
    EXPECT_FALSE(mac_.contains("/tree/file"));
}

PRIVATE_MOUNTS_TEST(RemovalCue, AModeThatCannotBeGivenBackIsNotTheReason) {
    mac_.makeFile("/tree/closed/file");
    change("/tree/closed", 0300);
    bool isAsked = false;
    int changes = 0;
    const auto removed = remove({SYS_openat2, SYS_openat, SYS_chmod}, [&](const PendingCall& call) {
        if (call.number == SYS_chmod) return ++changes == 2 ? failWith(EROFS) : proceed;
        if (call.text(1) == ".") return isAsked ? failWith(EIO) : proceed;
        if (call.text(1) != "closed" || isAsked) return proceed;
        isAsked = true;
        return failWith(EACCES);
    });
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(removed.error(), std::errc::io_error);
}

PRIVATE_MOUNTS_TEST(RemovalCue, AFolderThatRemainsHasTheModeItHadBeforeAnyAttempt) {
    mac_.makeFile("/tree/a/closed/kept");
    change("/tree/a/closed", 0300);
    bool isAsked = false;
    bool isShort = false;
    const auto removed = remove({SYS_openat2, SYS_openat, SYS_unlinkat}, [&](const PendingCall& call) {
        if (call.number == SYS_unlinkat) return call.text(1) == "kept" ? failWith(EPERM) : proceed;
        if (call.text(1) == "closed" && !isAsked) {
            isAsked = true;
            return failWith(EACCES);
        }
        // The rights are granted, and then there is no descriptor left: it all begins anew.
        if (!isAsked || isShort || call.text(1) != ".") return proceed;
        isShort = true;
        return failWith(EMFILE);
    });
    EXPECT_EQ(removed.error(), std::errc::operation_not_permitted);
    EXPECT_TRUE(isShort);
    EXPECT_EQ(modeOf("/tree/a/closed"), 0300U);
}

PRIVATE_MOUNTS_TEST(RemovalCue, OnlyTheOwnersRightsAreAddedAndOnlyWhereTheyAreMissing) {
    mac_.makeFile("/tree/full/kept");
    mac_.makeFile("/tree/less/kept");
    change("/tree/full", 01751);
    change("/tree/less", 02551);
    std::map<std::string, mode_t> modes;
    int changes = 0;
    const auto removed = remove({SYS_unlinkat, SYS_chmod}, [&](const PendingCall& call) {
        if (call.number == SYS_chmod) ++changes;
        if (call.number == SYS_chmod || call.text(1) != "kept") return proceed;
        modes[call.nameOf(0)] = modeOf("/tree/" + call.nameOf(0));
        return failWith(EPERM);
    });
    EXPECT_FALSE(removed);
    EXPECT_EQ(changes, 2) << "one to add the right and one to take it back";
    EXPECT_EQ(modes["full"], 01751U);
    EXPECT_EQ(modes["less"], 02751U);
    EXPECT_EQ(modeOf("/tree/full"), 01751U);
    EXPECT_EQ(modeOf("/tree/less"), 02551U);
}

PRIVATE_MOUNTS_TEST(RemovalCue, TheAdministratorNeedsNoRightsOnFoldersOfOthers) {
    if (!isRoot()) GTEST_SKIP() << "only root can remove what belongs to others";
    mac_.makeFile("/tree/theirs/file");
    change("/tree/theirs", 0000);
    giveToUnprivilegedUser(at("/tree/theirs"));
    int changes = 0;
    expectGone(remove({SYS_chmod}, [&](const PendingCall&) {
        ++changes;
        return proceed;
    }));
    EXPECT_EQ(changes, 0);
}

/// Makes a change after a folder was found unreadable and before it is opened otherwise.
class UnreadableCue : protected RemovalCue {
  protected:
    template <typename Change>
    Result<void> removeAndMeanwhile(Change change) {
        mac_.makeDirectory("/tree/closed");
        int calls = 0;
        auto removed = remove({SYS_openat2}, [&](const PendingCall& call) {
            if (call.text(1) != "closed") return proceed;
            if (++calls == 1) return failWith(EACCES);
            change();
            return proceed;
        });
        EXPECT_EQ(calls, 2);
        return removed;
    }
};

PRIVATE_MOUNTS_TEST(UnreadableCue, AFolderThatBecameALinkGoesAsALink) {
    change("/kept", 0500);
    expectGone(removeAndMeanwhile([&] {
        fs::remove(at("/tree/closed"));
        mac_.makeLink("/tree/closed", "/kept");
    }));
    mac_.makeDirectory("/tree");
    expectGone(removeAndMeanwhile([&] {
        fs::remove(at("/tree/closed"));
        mac_.makeLink("/tree/closed", "../kept");
    }));
    EXPECT_EQ(modeOf("/kept"), 0500U);
}

PRIVATE_MOUNTS_TEST(UnreadableCue, WhatIsMountedOnItSurvives) {
    change("/kept", 0500);
    const auto removed = removeAndMeanwhile([&] {
        ASSERT_EQ(::mount(at("/kept").c_str(), at("/tree/closed").c_str(), nullptr, MS_BIND, nullptr), 0);
    });
    EXPECT_EQ(removed.error(), std::errc::cross_device_link);
    EXPECT_TRUE(mac_.contains("/kept/precious"));
    EXPECT_EQ(modeOf("/kept"), 0500U);
}

PRIVATE_MOUNTS_TEST(RemovalCue, NoFolderStaysOpenInTheProgramsThatAreStartedMeanwhile) {
    makeDeepTree(mac_.makeDirectory("/tree"), 40);
    mac_.makeFile("/tree/closed/file");
    bool isAsked = false;
    int opened = 0;
    expectGone(remove({SYS_open, SYS_openat, SYS_openat2}, [&](const PendingCall& call) {
        EXPECT_NE(call.openFlags() & O_CLOEXEC, 0U) << call.text(call.number == SYS_open ? 0 : 1);
        ++opened;
        if (call.number == SYS_open || call.text(1) != "closed" || isAsked) return proceed;
        isAsked = true;
        return failWith(EACCES);
    }));
    EXPECT_GT(opened, 40 + (40 - 32)) << "the way down and up";
}

PRIVATE_MOUNTS_TEST(RemovalCue, RenamesElsewhereDoNotDisturbButAreNotWaitedForForEver) {
    constexpr int attempts = 10'000;
    for (const int error : {EAGAIN, EINTR}) {
        for (const int disturbances : {1, attempts - 1, attempts}) {
            SCOPED_TRACE(disturbances);
            mac_.makeFile("/tree/sub/file");
            int calls = 0;
            const auto removed = remove({SYS_openat2}, [&](const PendingCall& call) {
                return call.text(1) == "sub" && ++calls <= disturbances ? failWith(error) : proceed;
            });
            if (disturbances < attempts) {
                EXPECT_EQ(calls, disturbances + 1);
                expectGone(removed);
            } else {
                EXPECT_EQ(calls, attempts);
                EXPECT_EQ(removed.error().value(), error);
                EXPECT_TRUE(mac_.contains("/tree/sub/file"));
            }
            fs::remove_all(at("/tree"));
        }
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, NothingIsEnteredThatTheKernelCannotKeepInside) {
    for (const int error : {ENOSYS, EPERM, EOPNOTSUPP}) {
        mac_.makeFile("/tree/sub/file");
        const auto removed = remove({SYS_openat2}, [&](const PendingCall& call) {
            return call.text(1) == "sub" ? failWith(error) : proceed;
        });
        EXPECT_EQ(removed.error().value(), error);
        EXPECT_TRUE(mac_.contains("/tree/sub/file"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, WhatIsMountedBetweenReadingAndOpeningSurvives) {
    mac_.makeDirectory("/tree/sub");
    const auto removed = removeAndBefore("sub", [&] {
        ASSERT_EQ(::mount(at("/kept").c_str(), at("/tree/sub").c_str(), nullptr, MS_BIND, nullptr), 0);
    });
    EXPECT_EQ(removed.error(), std::errc::cross_device_link);
    EXPECT_TRUE(mac_.contains("/kept/precious"));
}

PRIVATE_MOUNTS_TEST(RemovalCue, DescriptorsThatRunOutAreTakenFromFoldersFurtherUp) {
    for (const int error : {EMFILE, ENFILE}) {
        makeDeepTree(mac_.makeDirectory("/tree"), 10);
        int calls = 0;
        expectGone(remove({SYS_openat2}, [&](const PendingCall& call) {
            // Above the first there is nothing that could be closed; every other one is refused once.
            return call.text(1) == "d" && ++calls % 2 == 0 ? failWith(error) : proceed;
        }));
        EXPECT_EQ(calls, 1 + 9 * 2);
    }
}

PRIVATE_MOUNTS_TEST(RemovalCue, WhereNoDescriptorIsLeftTheReasonIsTold) {
    makeDeepTree(mac_.makeDirectory("/tree"), 10);
    int refusals = 0;
    const auto removed = remove({SYS_openat2}, [&](const PendingCall& call) {
        return call.text(1) == "d" && ++refusals < tooMany ? failWith(EMFILE) : proceed;
    });
    EXPECT_EQ(removed.error(), std::errc::too_many_files_open);
    EXPECT_EQ(refusals, 2) << "once, and once alone";
    EXPECT_TRUE(mac_.contains("/tree/d/d"));
}

PRIVATE_MOUNTS_TEST(RemovalCue, ATreeIsRemovedBelowAnyOpenFolder) {
    mac_.makeFile("/folder/tree/sub/file");
    mac_.makeFile("/folder/file");
    mac_.makeLink("/folder/link", "/kept");
    mac_.makeFIFO("/folder/fifo");
    for (const int flags : {O_PATH, O_RDONLY}) {
        mac_.makeFile("/folder/tree/sub/file");
        const FileDescriptor folder(::open(at("/folder").c_str(), flags | O_DIRECTORY));
        EXPECT_FALSE(removeTree(folder.get(), "tree", alone));
        EXPECT_FALSE(mac_.contains("/folder/tree"));
    }
    const FileDescriptor folder(::open(at("/folder").c_str(), O_PATH | O_DIRECTORY));
    for (const char* name : {"file", "link", "fifo"}) EXPECT_FALSE(removeTree(folder.get(), name, alone));
    EXPECT_TRUE(fs::is_empty(at("/folder")));
    EXPECT_FALSE(removeTree(folder.get(), "missing", alone));
    EXPECT_TRUE(mac_.contains("/kept/precious"));
}

}  // namespace
}  // namespace orvane::test
