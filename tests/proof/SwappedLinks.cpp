// An attacker of the same user keeps swapping a folder for a link to another tree while an item is deleted or
// moved to the Trash. Options: "delete" or "trash".
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>
#include <thread>

#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// Swaps two entries for each other, over and over, while it is let.
class Swapper {
  public:
    Swapper() : thread_([this] { work(); }) {}
    ~Swapper() {
        isOver_ = true;
        thread_.join();
    }
    Swapper(const Swapper&) = delete;
    Swapper& operator=(const Swapper&) = delete;

    /// Returns when they have been swapped once: from then on it races. They are swapped until one is gone.
    void start(std::string a, std::string b) {
        a_ = std::move(a);
        b_ = std::move(b);
        swaps_ = 0;
        mayWork_ = true;
        while (swaps_ == 0) std::this_thread::yield();
    }
    /// How often they were swapped.
    std::uint64_t stop() {
        mayWork_ = false;
        while (isWorking_) std::this_thread::yield();
        return swaps_;
    }

  private:
    void work() {
        while (!isOver_) {
            isWorking_ = true;
            if (mayWork_) {
                swap();
                continue;
            }
            isWorking_ = false;
            std::this_thread::yield();
        }
        isWorking_ = false;
    }
    void swap() {
        try {
            exchangeEntries(a_, b_);
            ++swaps_;
        } catch (const std::system_error&) {
            // One of the two is gone.
            std::this_thread::yield();
        }
    }

    std::string a_;
    std::string b_;
    std::atomic<std::uint64_t> swaps_ = 0;
    std::atomic<bool> mayWork_ = false;
    std::atomic<bool> isWorking_ = false;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

/// What is swapped for a link.
enum class Swapped { folderInItem, item, folderOfItem, trash };

constexpr int files = 8;

class SwappedLinks {
  public:
    explicit SwappedLinks(const ProofTask& task) : task_(task), random_(task.seed) {
        // Wherever the attacker's link leads, names are found there that the removal asks for.
        for (const auto* const folder :
             {"/precious", "/precious/folder", "/precious/item", "/precious/item/folder"}) {
            makeFiles(folder);
        }
        before_ = looked();
        mac_.makeDirectory(TestVolume::trash());
    }

    ProofOutcome run() {
        ProofOutcome outcome;
        std::uint64_t swaps = 0;
        while (outcome.trials < task_.rounds && !(task_.isWrong && outcome.failures > 0)) {
            ++outcome.trials;
            swaps += attack();
            if (looked() != before_) {
                ++outcome.failures;
                restore();
            }
        }
        outcome.note = std::to_string(swaps / std::max<std::uint64_t>(outcome.trials, 1)) + " swaps a round";
        return outcome;
    }

  private:
    /// One item is removed; how often the two were swapped.
    std::uint64_t attack() {
        makeFiles("/place/item/folder");
        makeFiles("/place/item");
        const auto folder = mac_.files().identity(url("/place")).value();
        const auto [swapped, link] = chosen();
        const auto swappedPath = at(swapped);
        swapper_.start(swappedPath, link);
        if (task_.isWrong) {
            removeNaively();
        } else if (isToTrash()) {
            static_cast<void>(mac_.files().trashItem(url("/place/item"), folder));
        } else {
            static_cast<void>(mac_.files().removeItem(url("/place/item"), folder));
        }
        const auto swaps = swapper_.stop();
        for (const auto* const path : {"/place", "/link"}) fs::remove_all(at(path));
        fs::remove_all(at(TestVolume::trash()));
        fs::remove_all(at(TestVolume::home() + "/link"));
        mac_.makeDirectory(TestVolume::trash());
        return swaps;
    }

    /// What the attacker swaps this time, and a link beside it to the other tree, relative as the kernel and
    /// the volume both take it.
    std::pair<std::string, std::string> chosen() {
        switch (static_cast<Swapped>(random_() % (isToTrash() ? 4 : 3))) {
            case Swapped::folderInItem:
                return {"/place/item/folder", mac_.makeLink("/place/item/link", "../../precious/folder")};
            case Swapped::item:
                return {"/place/item", mac_.makeLink("/place/link", "../precious/item")};
            case Swapped::folderOfItem:
                return {"/place", mac_.makeLink("/link", "precious")};
            case Swapped::trash:
                break;
        }
        return {TestVolume::trash(), mac_.makeLink(TestVolume::home() + "/link", "../../precious")};
    }

    /// As a program does it that looks first and then acts, each time by the path.
    void removeNaively() const {
        if (!isToTrash()) return removeTreeNaively(at("/place/item"));
        std::error_code ignored;
        fs::rename(at("/place/item"), at(TestVolume::trash() + "/moved"), ignored);
    }
    static void removeTreeNaively(const fs::path& path) {
        std::error_code ignored;
        if (fs::symlink_status(path, ignored).type() != fs::file_type::directory) {
            fs::remove(path, ignored);
            return;
        }
        std::vector<fs::path> children;
        for (auto it = fs::directory_iterator(path, ignored); it != fs::directory_iterator();
             it.increment(ignored)) {
            children.push_back(it->path());
        }
        for (const auto& child : children) removeTreeNaively(child);
        fs::remove(path, ignored);
    }

    void makeFiles(const std::string& folder) const {
        mac_.makeDirectory(folder);
        for (int i = 0; i < files; ++i) std::ofstream(at(folder + "/" + std::to_string(i))) << folder;
    }
    /// What the other tree holds: nothing may go, and nothing may come.
    std::vector<std::string> looked() const {
        std::vector<std::string> paths;
        for (const auto& entry : fs::recursive_directory_iterator(at("/precious"))) {
            paths.push_back(entry.path());
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }
    void restore() const {
        fs::remove_all(at("/precious"));
        for (const auto* const folder :
             {"/precious", "/precious/folder", "/precious/item", "/precious/item/folder"}) {
            makeFiles(folder);
        }
    }

    bool isToTrash() const { return task_.has("trash"); }
    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    const ProofTask& task_;
    std::mt19937_64 random_;
    TestVolume mac_;
    std::vector<std::string> before_;
    Swapper swapper_;
};

const ProofHarness swappedLinks("SwappedLinks",
                                [](const ProofTask& task) { return SwappedLinks(task).run(); });

}  // namespace
}  // namespace orvane::test
