#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeVisit.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using testing::Pair;
using testing::UnorderedElementsAre;

/// A disk that changes, or fails, while it is looked at.
class ReadingCue {
  protected:
    static constexpr std::size_t limit = 100;

    ReadingCue() {
        mac_.makeFile("/folder/file", "contents");
        mac_.makeFile("/folder/sub/deeper");
        mac_.makeFile("/elsewhere/secret");
    }

    template <typename Director>
    Result<std::string> contents(Director director) {
        Result<std::string> bytes;
        onCue({SYS_read}, director, [&] { bytes = mac_.files().contents(url("/folder/file"), limit); });
        return bytes;
    }

    /// The size of each entry that a walk finds, or "none".
    template <typename Director>
    std::map<std::string, std::string> walked(std::initializer_list<long> calls, Director director) {
        std::map<std::string, std::string> found;
        onCue(calls, director, [&] {
            visitTree(mac_, "/folder", {}, [&](const WalkEntry& entry) {
                const auto size = entry.totalFileAllocatedSize;
                EXPECT_EQ(entry.fileAllocatedSize, size);
                EXPECT_TRUE(entry.isRegularFile || !size);
                found[std::string(entry.relativePath)] =
                    entry.isRegularFile ? size ? "size" : "unknown" : "none";
            });
        });
        return found;
    }

    std::string at(const std::string& path) const { return mac_.machinePath(path); }
    void append(std::size_t count) const {
        std::ofstream(at("/folder/file"), std::ios::app) << std::string(count, '+');
    }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(ReadingCue, AFileIsReadWholeInPiecesAndThroughInterruptions) {
    int reads = 0;
    const auto bytes = contents([&](const PendingCall& call) {
        if (++reads % 2 == 1) return failWith(EINTR);
        // By number: the thread sanitizer takes the library's call for a use of what the reading thread owns.
        return answer(::syscall(SYS_read, call.arguments[0], call.arguments[1], std::size_t{1}));
    });
    EXPECT_EQ(bytes, "contents");
    EXPECT_EQ(reads, 2 * (8 + 1));
}

PRIVATE_MOUNTS_TEST(ReadingCue, AFileThatCannotBeReadToItsEndIsAnError) {
    for (const int failing : {1, 2}) {
        int reads = 0;
        const auto bytes =
            contents([&](const PendingCall&) { return ++reads == failing ? failWith(EIO) : proceed; });
        EXPECT_FALSE(bytes);
        EXPECT_EQ(bytes.error(), std::errc::io_error);
    }
}

PRIVATE_MOUNTS_TEST(ReadingCue, AFileThatGrowsIsReadToTheLimitAndNoFurther) {
    const auto growBy = [&](std::size_t count) {
        mac_.makeFile("/folder/file", "contents");
        bool hasGrown = false;
        return contents([&, count](const PendingCall&) {
            if (!hasGrown) append(count);
            hasGrown = true;
            return proceed;
        });
    };
    EXPECT_EQ(growBy(1), "contents+");
    EXPECT_EQ(growBy(limit - 8), "contents" + std::string(limit - 8, '+'));
    EXPECT_EQ(growBy(limit - 7).error(), std::errc::file_too_large);
    EXPECT_EQ(growBy(10'000).error(), std::errc::file_too_large);
}

PRIVATE_MOUNTS_TEST(ReadingCue, AListingThatBreaksOffIsAnError) {
    Result<std::vector<DirectoryEntry>> entries;
    int reads = 0;
    onCue(
        {SYS_getdents64}, [&](const PendingCall&) { return ++reads == 2 ? failWith(EIO) : proceed; },
        [&] { entries = mac_.files().contentsOfDirectory(url("/folder"), {}); });
    EXPECT_FALSE(entries);
    EXPECT_EQ(entries.error(), std::errc::io_error);
}

PRIVATE_MOUNTS_TEST(ReadingCue, WhoCannotLookTakesNothingForGone) {
    const auto exists = [&](int error) {
        bool file = false;
        bool entry = false;
        onCue(
            {SYS_openat2}, [&](const PendingCall&) { return failWith(error); },
            [&] {
                file = mac_.files().fileExists(url("/folder/file"));
                entry = mac_.files().entryExists(url("/folder/file"));
            });
        EXPECT_EQ(file, entry);
        return file;
    };
    for (const int shortage : {EMFILE, ENFILE, ENOMEM, EAGAIN, EIO})
        EXPECT_TRUE(exists(shortage)) << shortage;
    for (const int answer : {ENOENT, ENOTDIR, EACCES, ELOOP}) EXPECT_FALSE(exists(answer)) << answer;
}

PRIVATE_MOUNTS_TEST(ReadingCue, WhatTurnsIntoSomethingElseHasNoSize) {
    const auto walkedWith = [&](FunctionRef<void()> change) {
        return walked({SYS_newfstatat}, [&](const PendingCall& call) {
            if (call.text(1) == "file") change();
            return proceed;
        });
    };
    const auto found = [](const std::string& kind) {
        return UnorderedElementsAre(Pair("file", kind), Pair("sub", "none"), Pair("sub/deeper", "size"));
    };
    EXPECT_THAT(walkedWith([] {}), found("size"));
    EXPECT_THAT(walkedWith([&] { fs::remove(at("/folder/file")); }), found("unknown"));
    mac_.makeFile("/folder/file");
    EXPECT_THAT(walkedWith([&] {
                    fs::remove(at("/folder/file"));
                    mac_.makeLink("/folder/file", "../elsewhere/secret");
                }),
                found("none"));
    fs::remove(at("/folder/file"));
    mac_.makeFile("/folder/file");
    EXPECT_THAT(walkedWith([&] {
                    fs::remove(at("/folder/file"));
                    mac_.makeDirectory("/folder/file");
                }),
                found("none"));
}

PRIVATE_MOUNTS_TEST(ReadingCue, AFolderThatBecameALinkIsNotWalked) {
    EXPECT_THAT(walked({SYS_openat},
                       [&](const PendingCall& call) {
                           if (call.text(1) == "sub") {
                               fs::remove_all(at("/folder/sub"));
                               mac_.makeLink("/folder/sub", at("/elsewhere"));
                           }
                           return proceed;
                       }),
                UnorderedElementsAre(Pair("file", "size"), Pair("sub", "none")));
}

PRIVATE_MOUNTS_TEST(ReadingCue, AnInterruptedLookIsRepeatedOnTheMachinesOwnDisk) {
    const auto machine = makeFileManager(Volume::open("/").value(), "/", "/");
    const auto callsOf = [&](long call, FunctionRef<void()> look) {
        int calls = 0;
        onCue(
            {call}, [&](const PendingCall&) { return ++calls <= 3 ? failWith(EINTR) : proceed; }, look);
        return calls;
    };
    Result<FileIdentity> identity;
    EXPECT_EQ(callsOf(SYS_newfstatat, [&] { identity = machine->identity(url(at("/folder/file"))); }), 4);
    EXPECT_TRUE(identity);
    Result<std::vector<DirectoryEntry>> entries;
    EXPECT_EQ(callsOf(SYS_openat, [&] { entries = machine->contentsOfDirectory(url(at("/folder")), {}); }),
              4);
    EXPECT_TRUE(entries);
}

}  // namespace
}  // namespace orvane::test
