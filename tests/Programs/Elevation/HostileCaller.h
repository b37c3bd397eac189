#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/Fixtures/EntrySwapper.h"
#include "tests/Programs/Elevation/InstalledRootPart.h"
#include "tests/Programs/Elevation/OrderFixture.h"

namespace orvane::test {

/// A whole scratch machine: a Mac's disk with two users, and beside it files that no order may reach. The
/// root part is installed on it, and called by users who ask for whatever they like: orders that are made up,
/// with bytes turned, sent again, or carried out while the user's own folders are swapped for links. After
/// each call everything on the machine is looked at. Needs private mounts and the right to give files away.
class HostileCaller : protected OrderVolume {
  public:
    HostileCaller(const InstalledRootPart::Programs& programs, std::uint64_t seed);
    /// Whether this user can give files away.
    static bool isPossible();

    /// Asks for one more thing. Gives what has changed that the order does not name or that no plan can hold,
    /// one line each.
    std::vector<std::string> ask();
    /// What was asked for last.
    std::string asked() const;
    /// How many of the calls changed anything.
    std::uint64_t carriedOut() const { return carriedOut_; }
    std::uint64_t swaps() const { return swaps_; }

    /// Does harm of several kinds by itself; which of it the look does not notice.
    std::vector<std::string> unnoticedHarm();

    /// From now on a root part is asked that believes whatever it is told.
    void askTheCredulous() { isCredulous_ = true; }

  private:
    /// What tells an entry of the disk from any other, its contents and its owner included.
    struct Look {
        ino_t inode = 0;
        mode_t mode = 0;
        uid_t owner = 0;
        gid_t group = 0;
        std::string contents;
        friend bool operator==(const Look&, const Look&) = default;
    };
    using Disk = std::map<std::string, Look>;
    using Call = InstalledRootPart::Call;

    void build();
    void give(const std::string& path, uid_t user) const;
    Disk disk() const;
    RemovalOrder randomOrder();
    PrivilegedRequest::Item randomItem(const RemovalOrder& order);
    Call madeUpCall();
    Call nextCall();
    int run(const Call& call);
    int carryOut(const Call& call) const;
    std::vector<std::string> harmDone(const Call& call, int status) const;
    std::set<std::string> whatMayGo(const RemovalOrder& order, const std::string& caller) const;

    std::string root() const;
    std::uint64_t chance(std::uint64_t of) { return random_() % of; }
    bool often() { return chance(12) != 0; }
    std::string oneOf(const std::vector<std::string>& texts) { return texts[chance(texts.size())]; }

    const InstalledRootPart rootPart_;
    EntrySwapper swapper_;
    Disk before_;
    std::mt19937_64 random_;
    Call asked_;
    /// Whether something was swapped while it was carried out.
    bool isRaced_ = false;
    /// One that was carried out.
    Call former_;
    std::uint64_t round_ = 0;
    std::uint64_t carriedOut_ = 0;
    std::uint64_t swaps_ = 0;
    bool isCredulous_ = false;
};

}  // namespace orvane::test
