// A program that saves its catalog over and over is killed at any moment; the file is the last catalog that
// it knew to be saved, or the next one. The wrong variant truncates the file and writes it.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <stdexcept>

#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/proof/Harness.h"
#include "tests/proof/NumberedCatalog.h"

namespace orvane::test {
namespace {

constexpr const char* catalog = "/folder/applications.json";
constexpr std::uint64_t mostSaves = 6;

class KilledSaves {
  public:
    explicit KilledSaves(const ProofTask& task) : task_(task), random_(task.seed) {
        mac_.makeFile(catalog, numberedCatalog(0));
        constexpr int saves = 50;
        const auto began = std::chrono::steady_clock::now();
        for (int i = 0; i < saves; ++i) save(0);
        durationOfSave_ = (std::chrono::steady_clock::now() - began) / saves;
    }

    ProofOutcome run() {
        ProofOutcome outcome;
        outcome.unit = "kills";
        std::uint64_t newer = 0;
        std::uint64_t number = 0;
        while (outcome.trials < task_.rounds && !(task_.isWrong && outcome.failures > 0)) {
            ++outcome.trials;
            const auto known = killWhileSaving(number);
            const auto found = numberOfCatalog(mac_.machinePath(catalog), known, known + 1);
            if (found) {
                number = *found;
                newer += *found == known ? 0 : 1;
                continue;
            }
            ++outcome.failures;
            std::cout << "neither " << known << " nor the next after kill " << outcome.trials << '\n';
            mac_.makeFile(catalog, numberedCatalog(number = 0));
        }
        if (!task_.isWrong) sweep(number);
        outcome.note = std::to_string(newer) + " killed between the save and its word";
        return outcome;
    }

  private:
    /// The number of the last catalog that the killed one said it had saved.
    std::uint64_t killWhileSaving(std::uint64_t number) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
        const FileDescriptor reading(ends[0]);
        FileDescriptor writing(ends[1]);
        const auto child = ::fork();
        if (child < 0) throw std::runtime_error("no process");
        if (child == 0) saveForEver(number, writing.get());
        writing = FileDescriptor();
        // After any save, at any moment of the next.
        auto saves = random_() % mostSaves;
        std::uint64_t known = number;
        while (saves > 0 && next(reading.get(), known)) --saves;
        const auto moment =
            std::chrono::steady_clock::now() + durationOfSave_ * static_cast<int>(random_() % 100) / 50;
        while (std::chrono::steady_clock::now() < moment) {
        }
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        if (!WIFSIGNALED(status)) throw std::runtime_error("a save failed");
        while (next(reading.get(), known)) {
        }
        return known;
    }

    [[noreturn]] void saveForEver(std::uint64_t number, int word) const {
        while (true) {
            if (!save(++number)) ::_exit(1);
            if (::write(word, &number, sizeof number) != sizeof number) ::_exit(1);
        }
    }
    bool save(std::uint64_t number) const {
        if (!task_.isWrong)
            return mac_.files().writeAtomically(numberedCatalog(number), url(catalog)).has_value();
        overwrite(mac_.machinePath(catalog), numberedCatalog(number));
        return true;
    }
    static bool next(int word, std::uint64_t& number) {
        return ::read(word, &number, sizeof number) == sizeof number;
    }

    /// What the killed ones left is cleared away by the next save.
    void sweep(std::uint64_t number) {
        const bool isSaved = save(number);
        const std::filesystem::directory_iterator left(mac_.machinePath("/folder"));
        if (!isSaved || std::distance(begin(left), end(left)) != 1) throw std::runtime_error("not swept");
    }

    const ProofTask& task_;
    std::mt19937_64 random_;
    TestVolume mac_;
    std::chrono::steady_clock::duration durationOfSave_{};
};

const ProofHarness killedSaves("KilledSaves", [](const ProofTask& task) { return KilledSaves(task).run(); });

}  // namespace
}  // namespace orvane::test
