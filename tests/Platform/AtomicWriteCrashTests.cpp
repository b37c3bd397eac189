#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <thread>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t length = std::size_t{256} << 10;

bool isWhole(const std::string& bytes) {
    return bytes.size() == length && bytes.find_first_not_of(bytes[0]) == std::string::npos;
}

class AtomicWriteCrash : public testing::Test {
  protected:
    AtomicWriteCrash() { file_ = mac_.makeFile("/folder/file", std::string(length, 'a')); }

    Result<void> write(char letter) const {
        return mac_.files().writeAtomically(std::string(length, letter), TestVolume::url("/folder/file"));
    }

    /// Truncates the file and writes it, as a program does that does not expect to die.
    void writeNaively(char letter) const {
        const FileDescriptor file(::open(file_.c_str(), O_WRONLY | O_TRUNC));
        const std::string bytes(length, letter);
        std::size_t written = 0;
        while (written < length) {
            const auto count = ::write(file.get(), bytes.data() + written, length - written);
            if (count <= 0) return;
            written += static_cast<std::size_t>(count);
        }
    }

    /// How many files are in the folder of the saved one.
    [[nodiscard]] auto fileCount() const {
        return std::distance(fs::directory_iterator(mac_.machinePath("/folder")), {});
    }

    /// A child saves once, and the system kills it when half of the bytes are written.
    template <typename Save>
    void dieHalfWay(Save save) const {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::signal(SIGXFSZ, SIG_DFL);
            const rlimit none{0, 0};
            const rlimit half{length / 2, length / 2};
            if (::setrlimit(RLIMIT_CORE, &none) != 0 || ::setrlimit(RLIMIT_FSIZE, &half) != 0) ::_exit(1);
            save('z');
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << "ended with " << status;
    }

    TestVolume mac_{memoryFolder()};
    std::string file_;
};

TEST_F(AtomicWriteCrash, ASaveThatDiesHalfWayLeavesTheOldFile) {
    ASSERT_NO_FATAL_FAILURE(dieHalfWay([&](char letter) { static_cast<void>(write(letter)); }));
    EXPECT_EQ(readFile(file_), std::string(length, 'a'));
    EXPECT_EQ(fileCount(), 2) << "half of a file was left beside it";

    ASSERT_TRUE(write('n'));
    EXPECT_EQ(readFile(file_), std::string(length, 'n'));
    EXPECT_EQ(fileCount(), 1) << "the next save clears away what the dead one left";

    ASSERT_NO_FATAL_FAILURE(dieHalfWay([&](char letter) { writeNaively(letter); }));
    EXPECT_FALSE(isWhole(readFile(file_))) << "dying half-way proves nothing";
}

TEST_F(AtomicWriteCrash, AReaderSeesWholeFilesOnly) {
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int i = 0; i < 300; ++i) EXPECT_TRUE(write(static_cast<char>('a' + i % 26)));
        isOver = true;
    });
    int broken = 0;
    while (!isOver) broken += isWhole(readFile(file_)) ? 0 : 1;
    writer.join();
    EXPECT_EQ(broken, 0);
}

TEST_F(AtomicWriteCrash, WritersDoNotSweepEachOther) {
    std::array<std::thread, 4> writers;
    for (auto& writer : writers) {
        writer = std::thread([&] {
            for (int i = 0; i < 200; ++i) EXPECT_TRUE(write('a'));
        });
    }
    for (auto& writer : writers) writer.join();
    EXPECT_TRUE(isWhole(readFile(file_)));
    EXPECT_EQ(fileCount(), 1);
}

}  // namespace
}  // namespace orvane::test
