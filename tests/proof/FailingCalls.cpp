// Every call to the kernel that a save, a move to the Trash or a deletion makes is failed in its turn, for
// several reasons, and so are all from that one on: the old state is there or the new one, a success is none
// unless it is the new one, and what goes on afterwards works. Options: "save", "trash" or "delete". The
// wrong variants do the same and look at no answer.
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/proof/Harness.h"
#include "tests/proof/NumberedCatalog.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// A state of the disk, and something that is done to it.
class Scenario {
  public:
    virtual ~Scenario() = default;
    virtual Result<void> act() = 0;
    /// The same without looking at any answer.
    virtual void actNaively() = 0;
    /// What is not as it must be after an attempt with that result.
    virtual std::vector<std::string> wrongs(const Result<void>& result) = 0;

  protected:
    std::string at(const std::string& path) const { return mac_.machinePath(path); }

    TestVolume mac_;
};

class Save : public Scenario {
  public:
    enum class Before { nothing, aFile, aFileAndWhatACrashLeft };
    explicit Save(Before before) {
        mac_.makeDirectory("/folder");
        if (before == Before::nothing) return;
        old_ = numberedCatalog(1);
        mac_.makeFile(catalog_, old_);
        if (before == Before::aFileAndWhatACrashLeft) mac_.makeFile("/folder/.orvane-save-0123456789abcdef");
    }
    Result<void> act() override { return mac_.files().writeAtomically(numberedCatalog(2), url(catalog_)); }
    void actNaively() override { overwrite(at(catalog_), numberedCatalog(2)); }
    std::vector<std::string> wrongs(const Result<void>& result) override {
        const auto found = readFile(at(catalog_));
        std::vector<std::string> wrongs;
        if (found != old_ && found != numberedCatalog(2)) wrongs.emplace_back("neither the old nor the new");
        if (result && found != numberedCatalog(2)) wrongs.emplace_back("a false success");
        if (!act() || readFile(at(catalog_)) != numberedCatalog(2))
            wrongs.emplace_back("the next save fails");
        if (std::distance(fs::directory_iterator(at("/folder")), {}) != 1) wrongs.emplace_back("not swept");
        return wrongs;
    }

  private:
    const std::string catalog_ = "/folder/catalog";
    /// Nothing where there was no file.
    std::string old_;
};

class Trashing : public Scenario {
  public:
    enum class Item { file, folder, folderThatMayNotBeChanged, link };
    enum class Trash { missing, empty, hasThatName };
    Trashing(Item item, Trash trash) : hasFormer_(trash == Trash::hasThatName) {
        if (item == Item::file) mac_.makeFile(item_, "item");
        if (item == Item::folder || item == Item::folderThatMayNotBeChanged) {
            mac_.makeFile(item_ + "/sub/file", "item");
        }
        if (item == Item::link) mac_.makeLink(item_, "/elsewhere");
        if (item == Item::folderThatMayNotBeChanged) ::chmod(at(item_).c_str(), 0500);
        mac_.makeFile("/elsewhere", "elsewhere");
        mac_.makeFile("/Applications/Stays.app", "stays");
        if (trash != Trash::missing) mac_.makeDirectory(TestVolume::trash());
        if (hasFormer_) mac_.makeFile(former_, "former");
        whole_ = whole(at(item_));
    }
    Result<void> act() override { return trashItem(mac_.files(), url(item_)); }
    void actNaively() override {
        std::error_code ignored;
        fs::create_directories(at(TestVolume::trash()), ignored);
        const auto place = at(TestVolume::trash() + "/moved");
        fs::copy(at(item_), place, fs::copy_options::recursive | fs::copy_options::copy_symlinks, ignored);
        fs::remove_all(at(item_), ignored);
    }
    std::vector<std::string> wrongs(const Result<void>& result) override {
        std::vector<std::string> wrongs;
        if (countInTrash() + countAtPlace() != 1) wrongs.emplace_back("lost, doubled or halved");
        if (result && countInTrash() != 1) wrongs.emplace_back("a false success");
        if (countAtPlace() == 1 && (!act() || countInTrash() != 1)) wrongs.emplace_back("the next one fails");
        if (readFile(at("/elsewhere")) != "elsewhere" || readFile(at("/Applications/Stays.app")) != "stays") {
            wrongs.emplace_back("something else has changed");
        }
        if (hasFormer_ && readFile(at(former_)) != "former") wrongs.emplace_back("replaced");
        return wrongs;
    }

  private:
    /// What an entry is and holds, as text; its mode may be another.
    static std::string whole(const std::string& path) {
        const auto status = fs::symlink_status(path);
        if (fs::is_symlink(status)) return "link " + fs::read_symlink(path).string();
        if (fs::is_regular_file(status)) return "file " + readFile(path);
        if (fs::is_directory(status)) return "folder " + readFile(path + "/sub/file");
        return {};
    }
    int countAtPlace() const {
        return whole(at(item_)) == whole_ ? 1 : fs::exists(fs::symlink_status(at(item_))) ? 2 : 0;
    }
    int countInTrash() const {
        std::error_code none;
        int count = 0;
        for (const auto& entry : fs::directory_iterator(at(TestVolume::trash()), none)) {
            if (!hasFormer_ || entry.path() != at(former_)) count += whole(entry.path()) == whole_ ? 1 : 2;
        }
        return count;
    }

    const std::string item_ = "/Applications/Foo.app";
    const std::string former_ = TestVolume::trash() + "/Foo.app";
    std::string whole_;
    const bool hasFormer_;
};

class Deletion : public Scenario {
  public:
    enum class Item { file, link, tree, treeByThreads };
    explicit Deletion(Item item) : isByThreads_(item == Item::treeByThreads) {
        mac_.makeFile("/elsewhere/precious", "precious");
        mac_.makeFile("/Applications/Stays.app/file", "stays");
        if (item == Item::file) mac_.makeFile(item_);
        if (item == Item::link) mac_.makeLink(item_, "/elsewhere");
        if (item == Item::file || item == Item::link) return;
        mac_.makeFile(item_ + "/a/b/file");
        mac_.makeFile(item_ + "/closed/file");
        mac_.makeFile(item_ + "/file");
        mac_.makeLink(item_ + "/a/link", "/elsewhere");
        mac_.makeFIFO(item_ + "/a/fifo");
        mac_.makeDirectory(item_ + "/empty");
        ::chmod(at(item_ + "/closed").c_str(), 0300);
        ::chmod(at(item_ + "/a/b").c_str(), 0500);
    }
    Result<void> act() override {
        const auto threads = [](FunctionRef<void()> work) { withHelpers(3, work); };
        if (isByThreads_) return removeItem(mac_.files(), url(item_), std::nullopt, threads);
        return removeItem(mac_.files(), url(item_));
    }
    void actNaively() override {
        std::error_code ignored;
        fs::remove_all(at(item_), ignored);
    }
    std::vector<std::string> wrongs(const Result<void>& result) override {
        std::vector<std::string> wrongs;
        if (result && mac_.contains(item_)) wrongs.emplace_back("a false success");
        if (mac_.contains(item_) && (!act() || mac_.contains(item_)))
            wrongs.emplace_back("the next one fails");
        if (readFile(at("/elsewhere/precious")) != "precious" ||
            readFile(at("/Applications/Stays.app/file")) != "stays") {
            wrongs.emplace_back("something else has changed");
        }
        return wrongs;
    }

  private:
    const std::string item_ = "/Applications/Foo.app";
    const bool isByThreads_;
};

using MakeScenario = std::function<std::unique_ptr<Scenario>()>;

std::vector<MakeScenario> scenarios(const ProofTask& task) {
    std::vector<MakeScenario> all;
    if (task.has("save")) {
        using enum Save::Before;
        for (const auto before : {nothing, aFile, aFileAndWhatACrashLeft}) {
            all.emplace_back([before] { return std::make_unique<Save>(before); });
        }
    }
    if (task.has("trash")) {
        using enum Trashing::Item;
        for (const auto item : {file, folder, folderThatMayNotBeChanged, link}) {
            using enum Trashing::Trash;
            for (const auto trash : {missing, empty, hasThatName}) {
                all.emplace_back([item, trash] { return std::make_unique<Trashing>(item, trash); });
            }
        }
    }
    if (task.has("delete")) {
        using enum Deletion::Item;
        for (const auto item : {file, link, tree, treeByThreads}) {
            all.emplace_back([item] { return std::make_unique<Deletion>(item); });
        }
    }
    return all;
}

/// One call fails, or it and all that follow.
struct Fault {
    int error = 0;
    bool isForGood = false;
};
const std::vector<Fault> faults{{EIO, false},    {EACCES, false}, {ENOSPC, false}, {EMFILE, false},
                                {ENOMEM, false}, {EINTR, false},  {EIO, true},     {EMFILE, true}};

/// Runs it with the calls from `first` on failed so; how many calls there were.
int attempt(Scenario& scenario, bool isWrong, int first, const Fault& fault, Result<void>& result) {
    int calls = 0;
    onCue(
        {SYS_open,      SYS_openat,     SYS_openat2,        SYS_read,       SYS_pread64,
         SYS_write,     SYS_pwrite64,   SYS_fstat,          SYS_newfstatat, SYS_stat,
         SYS_lstat,     SYS_statx,      SYS_getdents64,     SYS_lseek,      SYS_fsync,
         SYS_fdatasync, SYS_rename,     SYS_renameat,       SYS_renameat2,  SYS_unlink,
         SYS_unlinkat,  SYS_rmdir,      SYS_mkdir,          SYS_mkdirat,    SYS_link,
         SYS_linkat,    SYS_symlink,    SYS_symlinkat,      SYS_chmod,      SYS_fchmod,
         SYS_fchmodat,  SYS_chown,      SYS_fchown,         SYS_lchown,     SYS_fchownat,
         SYS_utimensat, SYS_truncate,   SYS_ftruncate,      SYS_fallocate,  SYS_flock,
         SYS_dup,       SYS_dup3,       SYS_access,         SYS_faccessat,  SYS_faccessat2,
         SYS_readlink,  SYS_readlinkat, SYS_getrandom,      SYS_statfs,     SYS_fstatfs,
         SYS_fcntl,     SYS_sendfile,   SYS_copy_file_range},
        [&](const PendingCall&) {
            const int number = calls++;
            const bool fails = number == first || (fault.isForGood && number > first);
            return first >= 0 && fails ? failWith(fault.error) : proceed;
        },
        [&] {
            if (isWrong) {
                scenario.actNaively();
                result = {};
            } else {
                result = scenario.act();
            }
        });
    return calls;
}

const ProofHarness failingCalls("FailingCalls", [](const ProofTask& task) {
    ProofOutcome outcome;
    outcome.unit = "failed calls";
    int points = 0;
    for (const auto& make : scenarios(task)) {
        Result<void> result;
        const int calls = attempt(*make(), task.isWrong, -1, {}, result);
        if (!result) throw std::runtime_error("it fails where nothing does: " + result.error().message());
        points += calls;
        for (int first = 0; first < calls; ++first) {
            for (const auto& fault : faults) {
                const auto scenario = make();
                attempt(*scenario, task.isWrong, first, fault, result);
                ++outcome.trials;
                const auto wrongs = scenario->wrongs(result);
                if (wrongs.empty()) continue;
                ++outcome.failures;
                std::cout << "call " << first << " of " << calls
                          << (fault.isForGood ? " and all the rest" : "") << ", error " << fault.error << ":";
                for (const auto& each : wrongs) std::cout << ' ' << each << ';';
                std::cout << std::endl;
                if (task.isWrong) return outcome;
            }
        }
    }
    outcome.figure =
        "every one of " + std::to_string(points) + " calls, " + std::to_string(outcome.trials) + " times";
    return outcome;
});

}  // namespace
}  // namespace orvane::test
