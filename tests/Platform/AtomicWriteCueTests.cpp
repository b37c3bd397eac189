#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Platform/FileManager.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

bool isFolder(int descriptor) {
    return fs::is_directory("/proc/self/fd/" + std::to_string(descriptor));
}

/// Makes the call with so many bytes only.
CallOutcome writeOnly(std::size_t count, const PendingCall& call) {
    // By number: the thread sanitizer takes the library's call for a use of what the saving thread owns.
    return answer(::syscall(SYS_write, call.arguments[0], call.arguments[1], count));
}

/// A disk that fails at the very call at which it matters to a save.
class AtomicWriteCue {
  protected:
    AtomicWriteCue() { mac_.makeFile("/folder/catalog", "old"); }

    template <typename Director>
    Result<void> save(std::initializer_list<long> calls, Director director) {
        Result<void> saved;
        // A sanitizer writes on its own account, too: into a pipe.
        const auto directorOfFiles = [&](const PendingCall& call) {
            const bool isOther = call.number == SYS_write && !call.nameOf(0).starts_with(".orvane-save-");
            return isOther ? proceed : director(call);
        };
        onCue(calls, directorOfFiles,
              [&] { saved = mac_.files().writeAtomically(contents_, url("/folder/catalog")); });
        return saved;
    }

    static bool isFlushOfFile(const PendingCall& call) {
        return call.number == SYS_fsync && !isFolder(call.descriptor(0));
    }
    static bool isFlushOfFolder(const PendingCall& call) {
        return call.number == SYS_fsync && isFolder(call.descriptor(0));
    }

    std::string text() const { return readFile(mac_.machinePath("/folder/catalog")); }
    auto fileCount() const { return std::distance(fs::directory_iterator(mac_.machinePath("/folder")), {}); }

    void expectSaved(const Result<void>& saved) const {
        EXPECT_TRUE(saved) << saved.error().message();
        EXPECT_EQ(text(), contents_);
        EXPECT_EQ(fileCount(), 1);
    }
    void expectOld(const Result<void>& saved, int error) const {
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().value(), error);
        EXPECT_EQ(text(), "old");
        EXPECT_EQ(fileCount(), 1) << "nothing is left behind";
    }

    TestVolume mac_;
    const std::string contents_ = "new contents";
};

PRIVATE_MOUNTS_TEST(AtomicWriteCue, TheBytesReachTheDiskBeforeTheNameAndTheNameBeforeTheEnd) {
    std::vector<std::string> steps;
    expectSaved(save({SYS_write, SYS_fsync, SYS_renameat}, [&](const PendingCall& call) {
        if (call.number == SYS_write) steps.emplace_back("write");
        if (isFlushOfFile(call)) steps.emplace_back("flush the file");
        if (call.number == SYS_renameat) steps.emplace_back("rename");
        if (isFlushOfFolder(call)) steps.emplace_back("flush the folder");
        return proceed;
    }));
    EXPECT_THAT(steps, ElementsAre("write", "flush the file", "rename", "flush the folder"));
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, ADiskThatCannotFlushAFolderIsNoFailure) {
    expectSaved(save({SYS_fsync}, [](const PendingCall& call) {
        return isFlushOfFolder(call) ? failWith(EINVAL) : proceed;
    }));
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, AFolderThatDoesNotReachTheDiskIsAFailure) {
    for (const int error : {EIO, ENOSPC, EROFS}) {
        const auto saved = save({SYS_fsync}, [&](const PendingCall& call) {
            return isFlushOfFolder(call) ? failWith(error) : proceed;
        });
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().value(), error);
        EXPECT_EQ(fileCount(), 1);
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, AFileThatDoesNotReachTheDiskIsAFailureWhateverTheReason) {
    for (const int error : {EINVAL, EIO, ENOSPC, EDQUOT}) {
        expectOld(
            save({SYS_fsync},
                 [&](const PendingCall& call) { return isFlushOfFile(call) ? failWith(error) : proceed; }),
            error);
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, AnInterruptionIsNoFailure) {
    std::set<std::string> interrupted;
    expectSaved(save({SYS_write, SYS_fsync}, [&](const PendingCall& call) {
        const auto step = isFlushOfFolder(call) ? "folder" : isFlushOfFile(call) ? "file" : "write";
        return interrupted.insert(step).second ? failWith(EINTR) : proceed;
    }));
    EXPECT_THAT(interrupted, ElementsAre("file", "folder", "write"));
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, WhatIsTakenInPiecesIsSavedWhole) {
    int pieces = 0;
    expectSaved(save({SYS_write}, [&](const PendingCall& call) {
        ++pieces;
        return writeOnly((call.arguments[2] + 1) / 2, call);
    }));
    EXPECT_EQ(pieces, 4) << "of 12 bytes the halves: 6, 3, 2 and 1";
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, AWriteThatFailsHalfWayLeavesTheOldFileAndNothingElse) {
    for (const int error : {ENOSPC, EIO, EDQUOT, EFBIG}) {
        for (const int failing : {1, 2, 3}) {
            int writes = 0;
            const auto saved = save({SYS_write}, [&](const PendingCall& call) {
                if (++writes == failing) return failWith(error);
                return writeOnly(1, call);
            });
            EXPECT_EQ(writes, failing);
            expectOld(saved, error);
        }
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, ANameThatCannotBeChangedLeavesTheOldFileAndNothingElse) {
    for (const int error : {EIO, EACCES, EXDEV, EBUSY}) {
        expectOld(save({SYS_renameat}, [&](const PendingCall&) { return failWith(error); }), error);
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, TheTemporaryFileIsNewAndTheUsersAlone) {
    std::set<std::string> names;
    std::size_t attempts = 0;
    expectSaved(save({SYS_openat}, [&](const PendingCall& call) {
        if ((call.arguments[2] & O_CREAT) == 0) return proceed;
        EXPECT_NE(call.arguments[2] & O_EXCL, 0U);
        EXPECT_EQ(call.arguments[3], 0600U);
        names.insert(call.text(1));
        return ++attempts <= 5 ? failWith(EEXIST) : proceed;
    }));
    EXPECT_EQ(attempts, 6U);
    EXPECT_EQ(names.size(), attempts) << "each time another name";
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, AFolderThatTakesNoFileIsAFailure) {
    for (const int error : {EACCES, ENOSPC, EROFS, EMFILE}) {
        expectOld(save({SYS_openat},
                       [&](const PendingCall& call) {
                           return (call.arguments[2] & O_CREAT) != 0 ? failWith(error) : proceed;
                       }),
                  error);
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, ATemporaryFileThatAnotherSaveTookAwayIsMadeAnew) {
    int locks = 0;
    expectSaved(save({SYS_flock}, [&](const PendingCall& call) {
        if (++locks == 1) fs::remove(fs::read_symlink("/proc/self/fd/" + std::to_string(call.descriptor(0))));
        return proceed;
    }));
    EXPECT_EQ(locks, 2);
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, ATemporaryFileThatAnotherSaveIsTakingAwayIsLeftToIt) {
    int locks = 0;
    EXPECT_TRUE(save({SYS_flock}, [&](const PendingCall& call) {
        EXPECT_FALSE(isFolder(call.descriptor(0)));
        return ++locks == 1 ? failWith(EWOULDBLOCK) : proceed;
    }));
    EXPECT_EQ(locks, 2);
    EXPECT_EQ(text(), contents_);
    EXPECT_EQ(fileCount(), 2) << "the other save, which is none here, would have removed it";
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, ADiskThatKnowsNoLocksIsWrittenTo) {
    for (const int error : {ENOLCK, ENOSYS, EOPNOTSUPP}) {
        expectSaved(save({SYS_flock}, [&](const PendingCall&) { return failWith(error); }));
    }
}

PRIVATE_MOUNTS_TEST(AtomicWriteCue, WhatIsLeftBehindStaysWhereItsLockCannotBeHad) {
    const auto left = mac_.makeFile("/folder/.orvane-save-0123456789abcdef", "half");
    int locks = 0;
    EXPECT_TRUE(save({SYS_flock},
                     [&](const PendingCall&) { return ++locks == 1 ? failWith(EWOULDBLOCK) : proceed; }));
    EXPECT_TRUE(fs::exists(left));
    expectSaved(save({}, [](const PendingCall&) { return proceed; }));
}

}  // namespace
}  // namespace orvane::test
