#include "tests/Services/RemovalTruth.h"
#include "tests/Fixtures/TestVolume.h"

#include <algorithm>
#include <cctype>

namespace orvane::test {
namespace {

constexpr const char* stillExists = "The item still exists after administrator authorization.";

/// Whether a name in the Trash is an item's own, or that with a number before its extension.
bool isTrashNameOf(const std::string& name, const std::string& own) {
    if (name == own) return true;
    if (name.size() <= own.size() + 1) return false;
    const auto added = name.size() - own.size();
    for (std::size_t start = 0; start <= own.size(); ++start) {
        const auto number = name.substr(start + 1, added - 1);
        const bool isNumber =
            name[start] == ' ' &&
            std::all_of(number.begin(), number.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
        if (isNumber && name.substr(0, start) + name.substr(start + added) == own) return true;
    }
    return false;
}

/// What one item of the batch came to, from the result and from the disk before.
struct Fate {
    const ObservedRemoval::Item* asked = nullptr;
    std::string path;
    /// Where its entry was; absent where there was none.
    std::optional<std::string> place;
    std::uint64_t inode = 0;
    bool isRemoved = false;
    std::optional<std::string> failure;
    bool wasGivenToAdministrator = false;
};

class Examination {
  public:
    explicit Examination(const ObservedRemoval& removal) : removal_(removal) {
        for (const auto& item : removal.items) fates_.push_back(fateOf(item));
    }

    std::vector<std::string> untruths() {
        examineLists();
        for (const auto& fate : fates_) examine(fate);
        for (const auto& [path, entry] : removal_.before.entries()) examineEntry(path, entry);
        for (const auto& [path, entry] : removal_.after.entries()) examineNewEntry(path, entry);
        return std::move(untruths_);
    }

  private:
    void tell(const std::string& path, const std::string& what) { untruths_.push_back(path + ": " + what); }

    Fate fateOf(const ObservedRemoval::Item& item) const;
    void examineLists();
    void examine(const Fate& fate);
    void examineRemoved(const Fate& fate);
    void examineFailed(const Fate& fate);
    void examineDropped(const Fate& fate);
    void examineEntry(const std::string& path, const DiskLook::Entry& entry);
    void examineNewEntry(const std::string& path, const DiskLook::Entry& entry);

    bool runFailed() const { return removal_.run && !removal_.run->failureReason.empty(); }
    bool ranCommands() const { return removal_.run && removal_.run->hasRunCommands; }
    bool existsAfter(const Fate& fate) const { return removal_.after.place(fate.path, true).has_value(); }
    bool isInTrashByItsName(const Fate& fate) const;
    bool hasVanished(const std::string& place) const;
    bool isReplacedInTrash(const Fate& fate) const;
    bool wentWithAnother(const Fate& fate) const;
    bool isTakenOrEmptied(const Fate& fate) const;
    static bool isTriedByUser(const Fate& fate);
    bool mayBeInTrash(const Fate& fate) const;
    bool mayBeGone(const std::string& path) const;
    bool mayBeGoneForGood(const std::string& path, const Fate& fate) const;

    const ObservedRemoval& removal_;
    std::vector<Fate> fates_;
    std::vector<std::string> untruths_;
};

Fate Examination::fateOf(const ObservedRemoval::Item& item) const {
    Fate fate;
    fate.asked = &item;
    fate.path = item.item.url.path();
    fate.place = removal_.before.place(fate.path, false);
    // The root is no entry.
    if (fate.place && fate.place->empty()) fate.place.reset();
    if (fate.place) fate.inode = removal_.before.entry(*fate.place)->inode;
    const auto& removed = removal_.result.removed;
    fate.isRemoved = std::count(removed.begin(), removed.end(), item.item.url) != 0;
    for (const auto& failure : removal_.result.failed) {
        if (failure.url == item.item.url) fate.failure = failure.reason;
    }
    fate.wasGivenToAdministrator = removal_.run && removal_.run->destinations.contains(fate.path);
    return fate;
}

/// Every entry is one item's, and every item has at most one.
void Examination::examineLists() {
    std::multiset<std::string> listed;
    for (const auto& url : removal_.result.removed) listed.insert(url.path());
    for (const auto& failure : removal_.result.failed) listed.insert(failure.url.path());
    for (const auto& path : listed) {
        if (listed.count(path) != 1) tell(path, "listed more than once");
        const bool isAsked =
            std::any_of(fates_.begin(), fates_.end(), [&](const Fate& fate) { return fate.path == path; });
        if (!isAsked) tell(path, "listed, and not asked for");
    }
}

void Examination::examine(const Fate& fate) {
    const auto& refusal = fate.asked->refusal;
    if (!refusal.empty()) {
        const bool wentBefore = !fate.failure && !fate.isRemoved && wentWithAnother(fate);
        if (fate.failure != refusal && !wentBefore) tell(fate.path, "not refused for its reason");
        if (fate.wasGivenToAdministrator) tell(fate.path, "refused, and handed on");
        if (fate.place && removal_.after.pathOf(fate.inode) != fate.place && !wentWithAnother(fate))
            tell(fate.path, "refused, and gone");
        return;
    }
    if (fate.isRemoved) {
        examineRemoved(fate);
    } else if (fate.failure) {
        examineFailed(fate);
    } else {
        examineDropped(fate);
    }
}

void Examination::examineRemoved(const Fate& fate) {
    if (fate.wasGivenToAdministrator && runFailed()) tell(fate.path, "removed by a run that failed");
    if (existsAfter(fate)) tell(fate.path, "removed, and still there");
    if (!fate.wasGivenToAdministrator) {
        if (fate.asked->item.requiresAdministrator) tell(fate.path, "removed without the administrator");
        if (!fate.place) return tell(fate.path, "removed, and never was there");
    }
    if (!fate.place) return;
    const auto now = removal_.after.pathOf(fate.inode);
    if (fate.wasGivenToAdministrator && now == fate.place && !existsAfter(fate)) return;  // Leads nowhere.
    if (!removal_.isToTrash) {
        if (now) tell(fate.path, "removed for good, and now at " + *now);
        return;
    }
    const bool isElsewhere = fate.wasGivenToAdministrator &&
                             (hasVanished(*fate.place) || isReplacedInTrash(fate) || wentWithAnother(fate));
    if (!isInTrashByItsName(fate) && !isElsewhere) tell(fate.path, "not in the Trash by its name");
}

void Examination::examineFailed(const Fate& fate) {
    if (!fate.wasGivenToAdministrator) return tell(fate.path, "failed, and never handed on");
    if (runFailed()) {
        if (*fate.failure != removal_.run->failureReason) tell(fate.path, "failed for another reason");
        const bool stayed = !fate.place || removal_.after.pathOf(fate.inode) == fate.place;
        if (!ranCommands() && !stayed && !wentWithAnother(fate)) tell(fate.path, "gone without a command");
        return;
    }
    if (*fate.failure != stillExists) tell(fate.path, "failed for another reason");
    if (!existsAfter(fate)) tell(fate.path, "failed, and gone");
}

void Examination::examineDropped(const Fate& fate) {
    if (fate.asked->item.requiresAdministrator || fate.wasGivenToAdministrator) {
        return tell(fate.path, "the administrator's, and not listed");
    }
    std::vector<std::string> visited;
    // What a link leads to may have come later.
    if (!removal_.before.place(fate.path, true, &visited)) return;
    if (existsAfter(fate)) tell(fate.path, "not listed, and still there");
    const bool wentBefore = std::any_of(fates_.begin(), fates_.end(), [&](const Fate& other) {
        return &other != &fate && isTriedByUser(other) && isTakenOrEmptied(other) &&
               std::count(visited.begin(), visited.end(), *other.place) != 0;
    });
    if (!wentBefore) tell(fate.path, "gone, and not listed");
}

/// An entry is in the folder that it was in, wherever that is now, and is as it was; but for what was
/// removed.
void Examination::examineEntry(const std::string& path, const DiskLook::Entry& entry) {
    const auto now = removal_.after.pathOf(entry.inode);
    if (!now) {
        if (!mayBeGone(path)) tell(path, "gone");
        return;
    }
    if (*removal_.after.entry(*now) != entry) tell(path, "changed");
    const auto folder = parentOf(path);
    const auto folderNow =
        folder.empty() ? folder : removal_.after.pathOf(removal_.before.entry(folder)->inode);
    if (folderNow && *now == *folderNow + "/" + nameOf(path)) return;
    const bool isRemoval = std::any_of(fates_.begin(), fates_.end(), [&](const Fate& fate) {
        return fate.place == path && mayBeInTrash(fate) && isInTrashByItsName(fate);
    });
    if (!isRemoval) tell(path, "moved to " + *now);
}

void Examination::examineNewEntry(const std::string& path, const DiskLook::Entry& entry) {
    if (removal_.before.pathOf(entry.inode)) return;
    const bool isNewTrash = path == TestVolume::trash() && removal_.isToTrash &&
                            removal_.before.entry(TestVolume::trash()) == nullptr;
    if (!isNewTrash) tell(path, "made");
}

bool Examination::isInTrashByItsName(const Fate& fate) const {
    if (!fate.place) return false;
    const auto now = removal_.after.pathOf(fate.inode);
    return now && now != fate.place && parentOf(*now) == TestVolume::trash() &&
           isTrashNameOf(nameOf(*now), nameOf(*fate.place));
}

bool Examination::hasVanished(const std::string& place) const {
    return removal_.run && std::any_of(removal_.run->vanished.begin(), removal_.run->vanished.end(),
                                       [&](const auto& vanished) { return isAtOrBelow(place, vanished); });
}

/// Items of one batch can be given the same place, where the later replaces the earlier.
bool Examination::isReplacedInTrash(const Fate& fate) const {
    if (!fate.wasGivenToAdministrator || !fate.place || removal_.after.pathOf(fate.inode)) return false;
    const auto& destinations = removal_.run->destinations;
    return std::any_of(fates_.begin(), fates_.end(), [&](const Fate& other) {
        return &other != &fate && other.wasGivenToAdministrator && isInTrashByItsName(other) &&
               destinations.at(other.path) == destinations.at(fate.path);
    });
}

bool Examination::wentWithAnother(const Fate& fate) const {
    return std::any_of(fates_.begin(), fates_.end(), [&](const Fate& other) {
        return &other != &fate && fate.place && isTakenOrEmptied(other) &&
               isAtOrBelow(*fate.place, *other.place);
    });
}

/// A folder that could not be deleted for good may have lost what lay in it.
bool Examination::isTakenOrEmptied(const Fate& fate) const {
    const bool isTried = isTriedByUser(fate) || ranCommands();
    return fate.place && (fate.isRemoved || (fate.failure && !removal_.isToTrash && isTried));
}

bool Examination::isTriedByUser(const Fate& fate) {
    return fate.asked->refusal.empty() && !fate.asked->item.requiresAdministrator;
}

bool Examination::mayBeInTrash(const Fate& fate) const {
    if (!removal_.isToTrash || !fate.asked->refusal.empty()) return false;
    return fate.isRemoved || (fate.wasGivenToAdministrator && runFailed() && ranCommands());
}

bool Examination::mayBeGone(const std::string& path) const {
    if (hasVanished(path)) return true;
    return std::any_of(fates_.begin(), fates_.end(), [&](const Fate& fate) {
        if (!fate.place || !isAtOrBelow(path, *fate.place) || !fate.asked->refusal.empty()) return false;
        return removal_.isToTrash ? isReplacedInTrash(fate) : mayBeGoneForGood(path, fate);
    });
}

bool Examination::mayBeGoneForGood(const std::string& path, const Fate& fate) const {
    const bool isContent = path != *fate.place;
    if (isContent) return isTakenOrEmptied(fate);
    return fate.isRemoved || (fate.failure && runFailed() && ranCommands());
}

}  // namespace

std::vector<std::string> untruths(const ObservedRemoval& removal) {
    return Examination(removal).untruths();
}

}  // namespace orvane::test
