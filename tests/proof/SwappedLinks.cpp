// An attacker of the same user keeps swapping a folder for a link to another tree while an item is deleted or
// moved to the Trash. Options: "delete" or "trash"; "root" has it done by the installed part that runs as
// root. The wrong variant looks first and then acts, each time by the path; as root it is rm and mv.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>

#include "Platform/Posix/Process.h"
#include "tests/Fixtures/EntrySwapper.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Programs/Elevation/InstalledRootPart.h"
#include "tests/Programs/Elevation/OrderFixture.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr uid_t homesOwner = 20001;
constexpr int filesInFolder = 8;

/// Wherever the attacker's link leads, names are found there that the removal asks for.
const std::vector<std::string> preciousFolders{"/Users/other", "/Users/other/folder", "/Users/other/item",
                                               "/Users/other/item/folder"};

class SwappedLinks : OrderVolume {
  public:
    explicit SwappedLinks(const ProofTask& task)
        : task_(task), random_(task.seed), isToTrash_(task.has("trash")), isAsRoot_(task.has("root")) {
        if (isAsRoot_) rootPart_ = std::make_unique<InstalledRootPart>(InstalledRootPart::builtPrograms());
        makePrecious();
        before_ = precious();
    }

    ProofOutcome run() {
        ProofOutcome outcome;
        std::uint64_t swaps = 0;
        while (outcome.trials < task_.rounds && !(task_.isWrong && outcome.failures > 0)) {
            ++outcome.trials;
            swaps += attack();
            if (precious() != before_) {
                ++outcome.failures;
                fs::remove_all(at("/Users/other"));
                makePrecious();
            }
        }
        outcome.note = std::to_string(swaps / std::max<std::uint64_t>(outcome.trials, 1)) +
                       " swaps a round, " + std::to_string(removed_) + " removed all the same";
        return outcome;
    }

  private:
    /// One item is removed; how often the two were swapped.
    std::uint64_t attack() {
        makeHome();
        // What was planned, before anything is swapped.
        const auto order = isToTrash_ ? orderToTrash({item_}) : orderToDelete({item_});
        const auto& exchange =
            exchanges_[random_() % (isToTrash_ ? exchanges_.size() : exchanges_.size() - 1)];
        swapper_.start(at(exchange.path), volume_.makeLink(exchange.link, exchange.target));
        remove(order);
        const auto swaps = swapper_.stop();
        if (!volume_.contains(item_)) ++removed_;
        fs::remove_all(at("/Users/sample"));
        return swaps;
    }

    void remove(const RemovalOrder& order) {
        const auto& folder = order.request.items.front().folder;
        if (task_.isWrong) {
            removeNaively();
        } else if (isAsRoot_) {
            rootPart_->run(InstalledRootPart::callFor(order, std::to_string(homesOwner)));
        } else if (isToTrash_) {
            trashAfterOthers(folder);
        } else {
            const auto threads = [](FunctionRef<void()> work) { withHelpers(3, work); };
            static_cast<void>(removeItem(volume_.files(), url(item_), folder, threads));
        }
    }
    /// What lies beside the item goes first, so that its folder and the Trash are known when its turn comes.
    void trashAfterOthers(const std::optional<FileIdentity>& folder) const {
        const auto remover = volume_.files().makeEntryRemover();
        const auto trash = [&](const std::string& path) {
            if (remover->look(url(path))) static_cast<void>(remover->moveToTrash(folder));
        };
        for (int i = 0; i < filesInFolder; ++i) trash(std::string(caches) + "/" + std::to_string(i));
        trash(item_);
    }
    void removeNaively() const {
        const auto inTrash = at(TestVolume::trash() + "/moved");
        std::error_code ignored;
        if (isAsRoot_) {
            const std::vector<std::string> move{"/bin/mv", "-T", "--", at(item_), inTrash};
            const std::vector<std::string> remove{"/bin/rm", "-rf", "--", at(item_)};
            waitForTermination(startProgram(isToTrash_ ? move : remove).value());
        } else if (isToTrash_) {
            fs::rename(at(item_), inTrash, ignored);
        } else {
            removeTreeNaively(at(item_));
        }
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

    /// The home with an item in its caches, and nothing in its Trash.
    void makeHome() const {
        volume_.makeDirectory(TestVolume::trash());
        makeFiles(item_ + "/folder");
        makeFiles(item_);
        makeFiles(caches);
        if (!isAsRoot_) return;
        for (const auto* const path :
             {"/Users/sample", "/Users/sample/.Trash", "/Users/sample/Library", caches}) {
            if (::lchown(at(path).c_str(), homesOwner, homesOwner) != 0)
                throw std::runtime_error("only root gives away");
        }
    }
    void makeFiles(const std::string& folder) const {
        volume_.makeDirectory(folder);
        for (int i = 0; i < filesInFolder; ++i) std::ofstream(at(folder + "/" + std::to_string(i))) << folder;
    }
    void makePrecious() const {
        for (const auto& folder : preciousFolders) makeFiles(folder);
    }
    /// What the other tree holds, and whose it is: nothing may go, and nothing may come.
    std::vector<std::string> precious() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(at("/Users/other"))) {
            struct stat status {};
            ::lstat(entry.path().c_str(), &status);
            found.push_back(entry.path().string() + " " + std::to_string(status.st_mode) + " " +
                            std::to_string(status.st_uid));
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    std::string at(const std::string& path) const { return volume_.machinePath(path); }

    const ProofTask& task_;
    std::mt19937_64 random_;
    const bool isToTrash_;
    const bool isAsRoot_;
    const std::string item_ = std::string(caches) + "/item";
    /// The links are relative: so the kernel and the volume take them alike. The last one of what is swapped
    /// is so only when something goes there.
    const std::vector<LinkExchange> exchanges_{
        {item_ + "/folder", item_ + "/link", "../../../../other/folder"},
        {item_, std::string(caches) + "/link", "../../../other/item"},
        {caches, "/Users/sample/Library/link", "../../other"},
        {TestVolume::trash(), "/Users/sample/link", "../other"},
    };
    std::vector<std::string> before_;
    std::unique_ptr<InstalledRootPart> rootPart_;
    EntrySwapper swapper_;
    std::uint64_t removed_ = 0;
};

const ProofHarness swappedLinks("SwappedLinks",
                                [](const ProofTask& task) { return SwappedLinks(task).run(); });

}  // namespace
}  // namespace orvane::test
