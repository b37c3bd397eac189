#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Support/TestVolume.h"

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
        static_cast<void>(::write(file.get(), bytes.data(), bytes.size()) > 0);
    }

    /// Kills a child that saves over and over, once it has saved `saves` times and is at it again.
    template <typename Save>
    void killWhileSaving(int saves, Save save) const {
        std::array<int, 2> pipe{};
        ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
        FileDescriptor reading(pipe[0]);
        FileDescriptor writing(pipe[1]);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
                save(letter);
                if (::write(writing.get(), "x", 1) != 1) ::_exit(1);
            }
        }
        char byte = 0;
        for (int i = 0; i < saves; ++i) EXPECT_EQ(::read(reading.get(), &byte, 1), 1);
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    }

    TestVolume mac_{memoryFolder()};
    std::string file_;
};

TEST_F(AtomicWriteCrash, AKilledSaveLeavesTheOldFileOrTheNewOne) {
    bool hasLeftTemporaryFile = false;
    for (int round = 0; round < 100; ++round) {
        killWhileSaving(1 + round % 7, [&](char letter) { static_cast<void>(write(letter)); });
        ASSERT_TRUE(isWhole(readFile(file_))) << "round " << round;
        hasLeftTemporaryFile |= std::distance(fs::directory_iterator(mac_.machinePath("/folder")), {}) > 1;
    }
    EXPECT_TRUE(hasLeftTemporaryFile) << "no save was killed in its middle";
    ASSERT_TRUE(write('n'));
    EXPECT_EQ(std::distance(fs::directory_iterator(mac_.machinePath("/folder")), {}), 1)
        << "the next save clears away what the killed ones left";

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    bool isBroken = false;
    for (int round = 0; !isBroken && std::chrono::steady_clock::now() < deadline; ++round) {
        killWhileSaving(1 + round % 7, [&](char letter) { writeNaively(letter); });
        isBroken = !isWhole(readFile(file_));
    }
    EXPECT_TRUE(isBroken) << "killing proved nothing";
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
    EXPECT_EQ(std::distance(fs::directory_iterator(mac_.machinePath("/folder")), {}), 1);
}

}  // namespace
}  // namespace orvane::test
