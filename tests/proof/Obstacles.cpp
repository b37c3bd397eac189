// A user's tree, now and then on another disk than his Trash, in which there is what his removal must leave
// alone: other disks, folders and files of the same disk mounted in it, some read-only; what cannot be
// changed; other people's files in folders that everybody may write to. It is deleted or moved to the Trash,
// with the user's own rights, and everything that must be left is. The wrong variant removes as the standard
// library does, and moves by the name.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <random>
#include <system_error>

#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class Obstacles {
  public:
    Obstacles(const ProofTask& task, std::uint64_t seed) : task_(task), random_(seed) { build(); }
    ~Obstacles() {
        for (auto mounted = mounts_.rbegin(); mounted != mounts_.rend(); ++mounted)
            ::umount2(mounted->c_str(), MNT_DETACH);
        for (const auto& path : locked_) unlock(path);
    }
    Obstacles(const Obstacles&) = delete;
    Obstacles& operator=(const Obstacles&) = delete;

    std::size_t mounts() const { return mounts_.size(); }
    std::size_t fixed() const { return locked_.size(); }

    /// What has been lost beyond what may be, or is told wrongly, one line each.
    std::vector<std::string> remove() {
        const bool isToTrash = random_() % 3 == 0;
        std::map<std::string, std::string> before = looked();
        if (!succeedsInChildProcess([&] {
                asUnprivilegedUser([&] {
                    const bool isDone = isToTrash ? trash() : deletePermanently();
                    if (isDone && mac_.contains(item_)) throw std::runtime_error("a false success");
                });
                if (testing::Test::HasFailure()) throw std::runtime_error("it failed");
            })) {
            return {"a false success, or it has died"};
        }
        std::vector<std::string> harm;
        for (const auto& path : mounts_) {
            // Whoever empties the Trash would lose what is mounted in it.
            if (!isMounted(path)) harm.push_back(path + " is mounted elsewhere");
        }
        const auto after = looked();
        for (const auto& [path, text] : before) {
            const auto found = after.find(path);
            if (found != after.end() && found->second == text) continue;
            if (!isToTrash && !mayGo(path)) harm.push_back(path + " is lost");
            if (!isToTrash) continue;
            if (!mounts_.empty()) harm.push_back(path + " has changed in a tree that may not be moved");
            if (!path.starts_with(at(item_) + "/")) harm.push_back(path + " is lost");
            const auto moved = after.find(at(TestVolume::trash() + "/item") + path.substr(at(item_).size()));
            if (moved == after.end() || moved->second != text) harm.push_back(path + " is not in the Trash");
        }
        return harm;
    }

  private:
    bool trash() {
        if (!task_.isWrong) return trashItem(mac_.files(), url(item_)).has_value();
        std::error_code error;
        fs::create_directory(at(TestVolume::trash()), error);
        fs::rename(at(item_), at(TestVolume::trash() + "/item"), error);
        return !error;
    }
    bool deletePermanently() {
        const auto threads = [](FunctionRef<void()> work) { withHelpers(3, work); };
        if (!task_.isWrong) return removeItem(mac_.files(), url(item_), std::nullopt, threads).has_value();
        std::error_code error;
        fs::remove_all(at(item_), error);
        return !error;
    }

    /// A tree of the user's, with some of the obstacles in some of its folders.
    void build() {
        mac_.makeDirectory(TestVolume::trash());
        if (random_() % 6 == 0) {
            // On another disk than the Trash.
            mountAt("tmpfs", mac_.makeDirectory("/Volumes/Data"), "tmpfs", 0);
            item_ = "/Volumes/Data/item";
        }
        std::vector<std::string> folders{item_};
        const auto count = 3 + random_() % 8;
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto folder = folders[random_() % folders.size()] + "/f" + std::to_string(i);
            mac_.makeFile(folder + "/own", folder);
            folders.push_back(folder);
        }
        mac_.makeFile("/elsewhere/precious", "precious");
        mac_.makeFile("/elsewhere/folder/precious", "precious, too");
        mac_.makeOutsideFile("precious", "precious outside");
        mac_.giveEverythingToUnprivilegedUser();
        const std::vector<std::function<void(const std::string&)>> all{
            [&](const auto& place) { disk(place, 0); },
            [&](const auto& place) { disk(place, MS_RDONLY); },
            [&](const auto& place) { bound(place, "/elsewhere", 0); },
            [&](const auto& place) { bound(place, "/elsewhere/folder", MS_RDONLY); },
            [&](const auto& place) { boundFile(place); },
            [&](const auto& place) { immutable(place); },
            [&](const auto& place) { sticky(place); },
            [&](const auto& place) { readOnlyFolder(place); },
            [&](const auto& place) { othersFolder(place); },
            [&](const auto& place) { mac_.makeLink(place, "/elsewhere"); },
            [&](const auto& place) { mac_.makeLink(place, mac_.outside()); },
        };
        const auto obstacles = 1 + random_() % 3;
        for (std::uint64_t i = 0; i < obstacles; ++i) {
            all[random_() % all.size()](folders[random_() % folders.size()] + "/o" + std::to_string(i));
        }
        if (random_() % 8 == 0) bound(item_, item_, MS_REC);
    }

    void mountAt(const std::string& what, const std::string& path, const char* type, unsigned long flags) {
        if (::mount(what.c_str(), path.c_str(), type, flags, nullptr) != 0) {
            throw std::system_error(errno, std::generic_category(), "mounting " + path);
        }
        if (mounts_.empty() || mounts_.back() != path) mounts_.push_back(path);
    }
    void disk(const std::string& place, unsigned long flags) {
        const auto path = mac_.makeDirectory(place);
        mountAt("tmpfs", path, "tmpfs", 0);
        mac_.makeFile(place + "/deep/precious", "precious of another disk");
        giveAll(place);
        if (flags != 0) mountAt("tmpfs", path, nullptr, MS_REMOUNT | MS_BIND | flags);
        keep(place);
    }
    void bound(const std::string& place, const std::string& what, unsigned long flags) {
        const auto path = mac_.makeDirectory(place);
        giveToUnprivilegedUser(path);
        mountAt(at(what), path, nullptr, MS_BIND | (flags & MS_REC));
        if ((flags & MS_RDONLY) != 0) mountAt("", path, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY);
        keep(place);
    }
    void boundFile(const std::string& place) {
        const auto path = mac_.makeFile(place, "under");
        giveToUnprivilegedUser(path);
        mountAt(at("/elsewhere/precious"), path, nullptr, MS_BIND);
        keep(place);
    }
    void immutable(const std::string& place) {
        mac_.makeFile(place + "/file", "fixed");
        giveAll(place);
        for (const auto& path : {at(place + "/file"), at(place)}) {
            if (!lock(path)) return;
            locked_.push_back(path);
        }
        keep(place);
    }
    /// Where everybody may write and nobody may remove what is another's.
    void sticky(const std::string& place) {
        ::chmod(mac_.makeDirectory(place).c_str(), 01777);
        mac_.makeFile(place + "/others", "of another");
        keep(place + "/others");
    }
    void readOnlyFolder(const std::string& place) {
        mac_.makeFile(place + "/file", "may go");
        giveAll(place);
        ::chmod(at(place).c_str(), 0500);
    }
    void othersFolder(const std::string& place) {
        mac_.makeFile(place + "/file", "of another");
        ::chmod(at(place).c_str(), 0755);
        keep(place);
    }
    void giveAll(const std::string& place) const {
        giveToUnprivilegedUser(at(place));
        for (const auto& entry : fs::recursive_directory_iterator(at(place)))
            giveToUnprivilegedUser(entry.path());
    }
    void keep(const std::string& place) { kept_.push_back(at(place)); }

    /// Every file of the volume and beside it, and what it holds; a link by its target.
    std::map<std::string, std::string> looked() const {
        std::map<std::string, std::string> found;
        for (const auto& base : {at("/"), mac_.outside()}) {
            for (const auto& entry : fs::recursive_directory_iterator(base)) {
                if (entry.is_symlink()) {
                    found[entry.path()] = "-> " + fs::read_symlink(entry.path()).string();
                } else if (entry.is_regular_file()) {
                    found[entry.path()] = readFile(entry.path());
                }
            }
        }
        return found;
    }
    /// It is the tree's and the user's.
    bool mayGo(const std::string& path) const {
        if (!path.starts_with(at(item_) + "/")) return false;
        for (const auto& kept : kept_) {
            if (path == kept || path.starts_with(kept + "/")) return false;
        }
        return true;
    }
    static bool isMounted(const std::string& path) {
        struct statx status {};
        return ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &status) == 0 &&
               (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    }
    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    const ProofTask& task_;
    std::mt19937_64 random_;
    TestVolume mac_;
    std::string item_ = "/Users/sample/item";
    std::vector<std::string> mounts_;
    std::vector<std::string> locked_;
    /// Machine paths of what has to be left.
    std::vector<std::string> kept_;
};

const ProofHarness obstacles("Obstacles", [](const ProofTask& task) {
    ProofOutcome outcome;
    outcome.unit = "trees";
    std::mt19937_64 seeds(task.seed);
    std::size_t mounts = 0;
    std::size_t fixed = 0;
    while (outcome.trials < task.rounds && !(task.isWrong && outcome.failures > 0)) {
        ++outcome.trials;
        Obstacles tree(task, seeds());
        mounts += tree.mounts();
        fixed += tree.fixed();
        const auto harm = tree.remove();
        if (harm.empty()) continue;
        ++outcome.failures;
        std::cout << "tree " << outcome.trials << ":\n";
        for (const auto& each : harm) std::cout << "  " << each << '\n';
    }
    outcome.note = std::to_string(mounts) + " mounts, " + std::to_string(fixed) + " immutable entries";
    return outcome;
});

}  // namespace
}  // namespace orvane::test
