// Items of one name are moved to the Trash at once, by four threads and by two programs in turn; every one of
// them is there afterwards, once. The wrong variant looks for a free name and then takes it.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>

#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr int itemsOfBatch = 200;

class SameNames {
  public:
    explicit SameNames(const ProofTask& task) : task_(task), random_(task.seed) {}

    ProofOutcome run() {
        ProofOutcome outcome;
        outcome.unit = "items";
        for (std::uint64_t batch = 0;
             outcome.trials < task_.rounds && !(task_.isWrong && outcome.failures > 0); ++batch) {
            makeItems();
            const bool isByThreads = batch % 2 == 0;
            if (isByThreads) {
                trashByThreads();
            } else {
                trashByPrograms();
            }
            outcome.trials += itemsOfBatch;
            outcome.failures += missing();
            fs::remove_all(mac_.machinePath(TestVolume::trash()));
            fs::remove_all(mac_.machinePath("/items"));
        }
        return outcome;
    }

  private:
    std::string pathOf(int item) const { return "/items/" + std::to_string(item) + "/" + name_; }
    static std::string textOf(int item) { return "this is " + std::to_string(item); }

    void makeItems() {
        static const std::vector<std::string> names{"Foo.app", "com.example.foo", ".hidden",
                                                    "Caches",  "a\n'\xFF.x",      "Foo 2.app"};
        name_ = names[random_() % names.size()];
        for (int item = 0; item < itemsOfBatch; ++item) {
            // A file, or a folder with one in it: either may be replaced by its like.
            const bool isFolder = random_() % 2 == 0;
            mac_.makeFile(pathOf(item) + (isFolder ? "/file" : ""), textOf(item));
        }
        mac_.makeDirectory(TestVolume::trash());
    }

    /// One of `movers` moves its share.
    void trashShare(int mover, int movers) const {
        for (int item = mover; item < itemsOfBatch; item += movers) {
            if (task_.isWrong) {
                trashNaively(item);
            } else if (const auto moved = trashItem(mac_.files(), url(pathOf(item))); !moved) {
                std::cout << "item " << item << ": " << moved.error().message() << std::endl;
            }
        }
    }
    void trashNaively(int item) const {
        const auto free = [&](const std::string& name) {
            return !fs::exists(fs::symlink_status(mac_.machinePath(TestVolume::trash() + "/" + name)));
        };
        std::uint64_t number = 1;
        while (!free(candidateNameInTrash(name_, number))) ++number;
        std::error_code ignored;
        fs::rename(mac_.machinePath(pathOf(item)),
                   mac_.machinePath(TestVolume::trash() + "/" + candidateNameInTrash(name_, number)),
                   ignored);
    }

    void trashByThreads() const {
        constexpr int movers = 4;
        std::atomic<int> waiting = movers;
        std::vector<std::thread> threads;
        for (int mover = 0; mover < movers; ++mover) {
            threads.emplace_back([&, mover] {
                --waiting;
                while (waiting > 0) std::this_thread::yield();
                trashShare(mover, movers);
            });
        }
        for (auto& thread : threads) thread.join();
    }
    void trashByPrograms() const {
        constexpr int movers = 2;
        std::vector<pid_t> programs;
        for (int mover = 0; mover < movers; ++mover) {
            const auto program = ::fork();
            if (program < 0) throw std::runtime_error("no process");
            if (program == 0) {
                trashShare(mover, movers);
                ::_exit(0);
            }
            programs.push_back(program);
        }
        for (const auto program : programs) {
            int status = 0;
            if (::waitpid(program, &status, 0) != program || status != 0) throw std::runtime_error("it died");
        }
    }

    /// How many of the items are not in the Trash, whole and once, or are still where they were.
    std::uint64_t missing() const {
        std::multiset<std::string> found;
        for (const auto& entry : fs::directory_iterator(mac_.machinePath(TestVolume::trash()))) {
            found.insert(readFile(entry.is_directory() ? entry.path() / "file" : entry.path()));
        }
        std::uint64_t count = 0;
        for (int item = 0; item < itemsOfBatch; ++item) {
            if (found.count(textOf(item)) != 1 || mac_.contains(pathOf(item))) ++count;
        }
        return count;
    }

    const ProofTask& task_;
    std::mt19937_64 random_;
    TestVolume mac_;
    std::string name_;
};

const ProofHarness sameNames("SameNames", [](const ProofTask& task) { return SameNames(task).run(); });

}  // namespace
}  // namespace orvane::test
