#include "tests/Services/RemovalTruth.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <asio/thread_pool.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "Services/AppRemovalService.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Services/RandomRemoval.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

using Failure = RemovalResult::Failure;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t rounds = 150;
constexpr std::size_t timesEachLieIsTold = 2;
#else
constexpr std::uint64_t rounds = 2000;
constexpr std::size_t timesEachLieIsTold = 8;
#endif

/// The number of the first batch. Another one is tried, or a failure repeated, with ORVANE_REMOVAL_SEED.
std::uint64_t firstSeed() {
    const char* const seed = std::getenv("ORVANE_REMOVAL_SEED");
    return seed != nullptr && *seed != '\0' ? std::strtoull(seed, nullptr, 10) : 20'261'121;
}

std::string trimmed(std::string text) {
    const char* const blanks = " \t\r\n";
    text.erase(text.find_last_not_of(blanks) + 1);
    return text.erase(0, text.find_first_not_of(blanks));
}

AdministratorRun asObserved(const ShellRunner::Run& run) {
    AdministratorRun observed;
    for (const auto& item : run.request.items) observed.destinations.emplace(item.source, item.destination);
    observed.hasRunCommands = run.hasRunCommands;
    observed.vanished = run.vanished;
    if (!run.outcome.launchError.empty()) {
        observed.failureReason = run.outcome.launchError;
    } else if (run.outcome.terminationStatus != 0) {
        const auto text = trimmed(run.outcome.standardError);
        observed.failureReason = text.empty() ? "Administrator permission was not granted." : text;
    }
    return observed;
}

/// One disk, on which one batch after the other is removed by the real services. Made and used by a user
/// without rights.
class Removals {
  public:
    ObservedRemoval remove(std::uint64_t seed) {
        auto batch = RandomBatchMaker(volume_, seed).make();
        runner_.setEnding(batch.ending);
        std::vector<RelatedItem> items;
        for (const auto& asked : batch.items) items.push_back(asked.item);
        DiskLook before(root());
        auto result = mainLoop_.run(batch.isToTrash ? service_.moveToTrash(std::move(items), {}, {})
                                                    : service_.deletePermanently(std::move(items), {}, {}));
        const auto run = runner_.takeRun();
        return {
            batch.isToTrash,   std::move(batch.items), run ? std::optional(asObserved(*run)) : std::nullopt,
            std::move(result), std::move(before),      DiskLook(root())};
    }

    std::string root() const { return volume_.machinePath(""); }
    std::string pathOf(const std::string& path) const { return volume_.machinePath(path); }
    std::string outside() const { return volume_.outside(); }

  private:
    TestVolume volume_{memoryFolder()};
    FakeWorkspace workspace_;
    ShellRunner runner_{volume_, {lockedFolder}};
    MainLoop mainLoop_;
    asio::thread_pool pool_{2};
    AppRemovalService service_{pool_.get_executor(), volume_.files(), workspace_, runner_};
};

std::string described(std::uint64_t seed, const ObservedRemoval& removal,
                      const std::vector<std::string>& untruths) {
    std::string text = "ORVANE_REMOVAL_SEED=" + std::to_string(seed);
    text += removal.isToTrash ? ", to the Trash:\n" : ", for good:\n";
    for (const auto& untruth : untruths) text += "  " + untruth + '\n';
    for (const auto& [item, refusal] : removal.items) {
        text += " asked " + item.id() + (item.requiresAdministrator ? " (administrator)" : "") + '\n';
    }
    for (const auto& url : removal.result.removed) text += " removed " + url.path() + '\n';
    for (const auto& [url, reason] : removal.result.failed)
        text += " failed " + url.path() + ": " + reason + '\n';
    return text;
}

TEST(RemovalTruth, EveryResultIsWhatTheDiskSays) {
    asUnprivilegedUser([] {
        Removals removals;
        std::map<std::string, std::size_t> seen;
        for (auto seed = firstSeed(); seed < firstSeed() + rounds && !testing::Test::HasFailure(); ++seed) {
            const auto removal = removals.remove(seed);
            const auto found = untruths(removal);
            EXPECT_TRUE(found.empty()) << described(seed, removal, found);
            EXPECT_TRUE(fs::is_empty(removals.outside()));
            ++seen[removal.isToTrash ? "to the Trash" : "for good"];
            seen["removed"] += removal.result.removed.size();
            seen["failed"] += removal.result.failed.size();
            seen["run"] += removal.run ? 1 : 0;
            seen["failed run"] += removal.run && !removal.run->failureReason.empty() ? 1 : 0;
        }
        for (const auto& [what, count] : seen) {
            EXPECT_GT(count, rounds / 10) << what;
        }
    });
}

/// What a result could claim, or a disk could have suffered, against the truth.
enum class Lie {
    whatFailedIsRemoved,
    whatIsRemovedFailed,
    anEntryIsDropped,
    anEntryIsDoubled,
    aReasonIsAnother,
    aKeptFileIsGone,
    aKeptFileIsChanged,
    aKeptLinkLeadsElsewhere,
    aFileIsMade,
    whatIsRemovedIsBack,
    theTrashHoldsACopy,
    theTrashLostAnItem,
    theTrashHasAForeignName,
};

constexpr std::array allLies{
    Lie::whatFailedIsRemoved,    Lie::whatIsRemovedFailed,     Lie::anEntryIsDropped,
    Lie::anEntryIsDoubled,       Lie::aReasonIsAnother,        Lie::aKeptFileIsGone,
    Lie::aKeptFileIsChanged,     Lie::aKeptLinkLeadsElsewhere, Lie::aFileIsMade,
    Lie::whatIsRemovedIsBack,    Lie::theTrashHoldsACopy,      Lie::theTrashLostAnItem,
    Lie::theTrashHasAForeignName};

/// Tells lies about a removal. Each gives back whether there was something to lie about.
class Liar {
  public:
    Liar(const Removals& removals, ObservedRemoval& removal) : removals_(removals), removal_(removal) {}

    bool tell(Lie lie) {
        switch (lie) {
            case Lie::whatFailedIsRemoved:
                return claimRemoved();
            case Lie::whatIsRemovedFailed:
                return claimFailed();
            case Lie::anEntryIsDropped:
                return changeResult([](auto& result) { result.removed.pop_back(); });
            case Lie::anEntryIsDoubled:
                return changeResult([](auto& result) { result.removed.push_back(result.removed.back()); });
            case Lie::aReasonIsAnother:
                if (removal_.result.failed.empty()) return false;
                removal_.result.failed.back().reason += '.';
                return true;
            default:
                return harm(lie);
        }
    }

  private:
    template <typename Change>
    bool changeResult(Change change) {
        if (removal_.result.removed.empty() || !wasThere(removal_.result.removed.back())) return false;
        change(removal_.result);
        return true;
    }

    bool wasThere(const FileURL& url) const { return removal_.before.place(url.path(), true).has_value(); }

    bool claimRemoved() {
        auto& [removed, failed] = removal_.result;
        if (failed.empty() || !removal_.after.place(failed.back().url.path(), true)) return false;
        removed.push_back(failed.back().url);
        failed.pop_back();
        return true;
    }

    bool claimFailed() {
        return changeResult([](RemovalResult& result) {
            result.failed.push_back(
                {result.removed.back(), "The item still exists after administrator authorization."});
            result.removed.pop_back();
        });
    }

    /// Does something to the disk, and looks at it again.
    bool harm(Lie lie) {
        const auto kept = removals_.pathOf("/Users/sample/Documents/letter");
        const auto link = removals_.pathOf("/Users/link");
        if (lie == Lie::aKeptFileIsGone) {
            fs::remove(kept);
        } else if (lie == Lie::aKeptFileIsChanged) {
            // As long as it was.
            std::ofstream(kept) << "lost";
            fs::last_write_time(kept, fs::file_time_type::clock::now() + std::chrono::hours(1));
        } else if (lie == Lie::aKeptLinkLeadsElsewhere) {
            fs::remove(link);
            fs::create_symlink("Shared", link);
        } else if (lie == Lie::aFileIsMade) {
            std::ofstream(kept + " 2") << "foreign";
        } else if (!harmRemoved(lie)) {
            return false;
        }
        removal_.after = DiskLook(removals_.root());
        return true;
    }

    bool harmRemoved(Lie lie) {
        const auto place = standardRemoval();
        if (!place || !removal_.isToTrash) return false;
        const auto now = removal_.after.pathOf(removal_.before.entry(*place)->inode);
        if (!now) return false;
        const auto inTrash = removals_.pathOf(*now);
        if (lie == Lie::whatIsRemovedIsBack) {
            fs::rename(inTrash, removals_.pathOf(*place));
        } else if (lie == Lie::theTrashHasAForeignName) {
            fs::rename(inTrash, removals_.pathOf(parentOf(*now)) + "/foreign");
        } else if (lie == Lie::theTrashLostAnItem) {
            fs::remove(inTrash);
        } else {
            fs::rename(inTrash, inTrash + "~");
            fs::copy_file(inTrash + "~", inTrash);
            fs::remove(inTrash + "~");
        }
        return true;
    }

    /// Where a file was that the user's own rights removed.
    std::optional<std::string> standardRemoval() const {
        for (const auto& url : removal_.result.removed) {
            const auto place = removal_.before.place(url.path(), false);
            if (!place || (removal_.run && removal_.run->destinations.contains(url.path()))) continue;
            const auto* const folder = removal_.after.entry(parentOf(*place));
            if (folder != nullptr && S_ISREG(removal_.before.entry(*place)->mode)) return place;
        }
        return std::nullopt;
    }

    const Removals& removals_;
    ObservedRemoval& removal_;
};

TEST(RemovalTruth, EveryLieIsFoundOut) {
    asUnprivilegedUser([] {
        Removals removals;
        for (const auto lie : allLies) {
            std::size_t told = 0;
            for (auto seed = firstSeed(); seed < firstSeed() + rounds && told < timesEachLieIsTold; ++seed) {
                auto removal = removals.remove(seed);
                if (!Liar(removals, removal).tell(lie)) continue;
                ++told;
                EXPECT_FALSE(untruths(removal).empty())
                    << "lie " << static_cast<int>(lie) << " was believed, " << described(seed, removal, {});
            }
            EXPECT_EQ(told, timesEachLieIsTold) << "lie " << static_cast<int>(lie);
        }
    });
}

}  // namespace
}  // namespace orvane::test
