// Trees at the limits, beside coreutils' rm on the same trees: "levels" (100,000 folders in each other) and
// "names" (60 levels of names of 255 bytes) are scanned, moved to the Trash and deleted with 64 descriptors
// and a stack of 256 KiB, "entries" (400,000 files in one folder) are deleted. A round is each of them once;
// what is compared is the shortest time of each, and rounds end when that keeps the bound. The wrong variant
// is the standard library's, which opens every level and remembers every path.
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/TreeBuilding.h"
#include "tests/Programs/Elevation/InstalledRootPart.h"
#include "tests/Programs/Elevation/OrderFixture.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::duration<double>;

constexpr rlim_t descriptors = 64;
constexpr rlim_t stack = rlim_t{256} << 10;
constexpr std::uint64_t leastRounds = 2;
constexpr long mostMemory = 64L << 10;

struct Cost {
    double seconds = 0;
    /// The most that it held, in KiB.
    long memory = 0;
    bool isDone = false;
};

/// What it costs a child that has so few descriptors and so small a stack.
Cost inChild(FunctionRef<bool()> body) {
    const auto began = std::chrono::steady_clock::now();
    const auto child = ::fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) {
        const rlimit few{descriptors, descriptors};
        const rlimit small{stack, stack};
        if (::setrlimit(RLIMIT_NOFILE, &few) != 0 || ::setrlimit(RLIMIT_STACK, &small) != 0) ::_exit(2);
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) != child) throw std::runtime_error("the child was lost");
    return {Seconds(std::chrono::steady_clock::now() - began).count(), usage.ru_maxrss,
            WIFEXITED(status) && WEXITSTATUS(status) == 0};
}

/// The same for this program's own code, every thread of which has that stack.
Cost inThread(FunctionRef<bool()> body) {
    return inChild([&] {
        pthread_attr_t attributes;
        ::pthread_attr_init(&attributes);
        ::pthread_attr_setstacksize(&attributes, stack);
        ::pthread_setattr_default_np(&attributes);
        bool isDone = false;
        std::thread([&] { isDone = body(); }).join();
        return isDone;
    });
}

Cost inProgram(const std::vector<std::string>& command) {
    return inChild([&] {
        std::vector<char*> arguments;
        for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        const FileDescriptor silence(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        ::dup2(silence.get(), STDOUT_FILENO);
        ::execv(arguments.front(), arguments.data());
        return false;
    });
}

class LargeTrees : OrderVolume {
  public:
    explicit LargeTrees(const ProofTask& task)
        : task_(task), isWide_(task.has("entries")), bound_(isWide_ ? 1.2 : 2.5) {}

    ProofOutcome run() {
        ProofOutcome outcome;
        double ours = HUGE_VAL;
        double theirs = HUGE_VAL;
        const auto ratio = [&] { return ours / theirs; };
        // Whoever else is at work makes it longer, never shorter.
        while (outcome.trials < task_.rounds && (outcome.trials < leastRounds || ratio() > bound_)) {
            ++outcome.trials;
            makeTree();
            ours = std::min(ours, demand("deleting", removal()).seconds);
            makeTree();
            theirs = std::min(theirs, demand("rm", inProgram({"/bin/rm", "-rf", "--", at(item_)})).seconds);
            if (!problems_.empty()) break;
        }
        if (!task_.isWrong && !isWide_) useOtherwise();
        if (ratio() > bound_) problems_.push_back("it takes longer");
        for (const auto& problem : problems_) std::cout << problem << '\n';
        outcome.failures = problems_.size();
        outcome.figure = tidy(ratio()) + " × rm";
        outcome.note = "at most " + tidy(bound_) + "; " + tidy(ours) + " s, " +
                       std::to_string(memory_ >> 10) + " MB" + also_;
        return outcome;
    }

  private:
    void makeTree() const {
        const auto folder = volume_.makeDirectory(item_ + "/Contents");
        if (task_.has("levels")) makeDeepTree(folder, 100'000);
        if (task_.has("names")) makeDeepTree(folder, 60, std::string(255, 'n'));
        if (!isWide_) return;
        constexpr int entries = 400'000;
        const FileDescriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int i = 0; i < entries; ++i) {
            const auto name = "file" + std::to_string(i);
            if (::mknodat(open.get(), name.c_str(), S_IFREG | 0600, 0) != 0)
                throw std::runtime_error("no file");
        }
    }

    Cost removal() const {
        return inThread([&] {
            const auto threads = [](FunctionRef<void()> work) { withHelpers(3, work); };
            if (!task_.isWrong)
                return removeItem(volume_.files(), url(item_), std::nullopt, threads).has_value();
            std::error_code error;
            std::vector<fs::path> all;
            for (auto it = fs::recursive_directory_iterator(at(item_), error);
                 it != fs::recursive_directory_iterator(); it.increment(error)) {
                all.push_back(it->path());
            }
            fs::remove_all(at(item_), error);
            return !error;
        });
    }

    /// The rest of what becomes of an application, and the whole program with the same limits.
    void useOtherwise() {
        makeTree();
        const auto threads = [](FunctionRef<void()> work) { withHelpers(3, work); };
        const auto scanned = demand("scanning", inThread([&] {
                                        const auto sizes =
                                            volume_.files().allocatedSizes({url(item_)}, {}, threads);
                                        return sizes.front().fileAllocatedSize > 0;
                                    }));
        const auto trashed =
            demand("trashing", inThread([&] { return trashItem(volume_.files(), url(item_)).has_value(); }));
        fs::rename(at(TestVolume::trash() + "/Deep.app"), at(item_));
        const auto program = binaryDirectory() + "/orvane-cli";
        const std::vector<std::string> start{program, "--root", at("/"), "--home", TestVolume::home()};
        const auto runs = [&](const char* what, std::vector<std::string> more) {
            more.insert(more.begin(), start.begin(), start.end());
            demand(what, inProgram(more));
        };
        runs("the program's scan", {"list", "--rescan"});
        runs("the program's move to the Trash", {"remove", "Deep", "--yes"});
        fs::rename(at(TestVolume::trash() + "/Deep.app"), at(item_));
        runs("the program's deletion", {"remove", "Deep", "--yes", "--permanently"});
        if (volume_.contains(item_)) problems_.emplace_back("the program left it");
        if (isRoot()) {
            makeTree();
            const InstalledRootPart rootPart(InstalledRootPart::builtPrograms());
            const auto call = InstalledRootPart::callFor(orderToDelete({item_}), "0");
            demand("the administrator's deletion", inChild([&] { return rootPart.run(call) == 0; }));
            if (volume_.contains(item_)) problems_.emplace_back("the administrator's part left it");
        }
        also_ = "; scanned in " + tidy(scanned.seconds) + " s, trashed in " + tidy(trashed.seconds) + " s";
    }

    Cost demand(const char* what, const Cost& cost) {
        if (!cost.isDone) problems_.push_back(std::string(what) + " failed");
        if (std::string(what) == "deleting") {
            memory_ = std::max(memory_, cost.memory);
            if (memory_ > mostMemory) problems_.emplace_back("it holds too much memory");
        }
        return cost;
    }
    static std::string tidy(double number) {
        auto text = std::to_string(std::round(number * 100) / 100);
        return text.substr(0, text.find('.') + 3);
    }
    std::string at(const std::string& path) const { return volume_.machinePath(path); }

    const ProofTask& task_;
    const bool isWide_;
    const double bound_;
    const std::string item_ = "/Applications/Deep.app";
    std::vector<std::string> problems_;
    long memory_ = 0;
    std::string also_;
};

const ProofHarness largeTrees("LargeTrees", [](const ProofTask& task) { return LargeTrees(task).run(); });

}  // namespace
}  // namespace orvane::test
