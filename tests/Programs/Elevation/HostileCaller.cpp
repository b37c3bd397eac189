#include "tests/Programs/Elevation/HostileCaller.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>

#include "tests/Fixtures/KernelSettings.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

using Kind = PrivilegedRequest::Item::Kind;

constexpr uid_t anna = 20001;
constexpr uid_t otto = 20002;
const std::string ottosHome = "/Users/other";

/// The items that a plan for Anna's home can hold; nothing else may ever change.
const std::vector<std::string> planned{
    "/Applications/Foo.app",
    "/Users/sample/Applications/Own.APP",
    "/Library/LaunchAgents/a.plist",
    "/Library/LaunchDaemons/d.plist",
    "/Users/sample/Library/LaunchAgents/u.plist",
    "/Users/sample/Library/Caches/org.example.foo",
    "/Users/sample/Library/Caches/-it's \"a\"\n$(touch x)",
    "/Users/sample/Library/Preferences/org.example.foo.plist",
    "/Users/sample/Library/Application Support/a/b",
    "/Users/sample/Library/Group Containers/TEAM.foo",
    "/Users/sample/Library/Caches/link",
    "/Users/sample/Library/Caches/hard",
};
const std::vector<std::string> forbidden{
    "/etc/passwd",
    "/etc",
    "/",
    "/Users",
    "/Users/sample",
    "/Users/other",
    "/Users/other/Library/Caches/x",
    "/Users/other/.Trash/old",
    "/Users/sample/.Trash",
    "/Users/sample/.Trash/old",
    "/Users/sample/Library",
    "/Users/sample/Library/Caches",
    "/Users/sample/Library/Caches/link/Library",
    "/Users/sample/Library/Caches/out/precious",
    "/Users/sample/Documents/letter",
    "/System/Applications/Mail.app",
    "/Applications",
    "/Applications/readme.txt",
    "/Applications/Utilities/Util.app",
    "/Library/LaunchDaemons",
    "/Library/LaunchAgents/notes.txt",
    "/Library/precious",
};
const std::vector<std::string> kept{
    "/Users/other/Library/Caches/x",
    "/Users/other/Library/Caches/org.example.foo",
    "/Users/other/Library/LaunchAgents/u.plist",
    "/Users/other/.Trash/old",
    "/Users/sample/.Trash/old",
    "/Users/sample/Documents/letter",
    "/System/Applications/Mail.app/Contents/file",
    "/Applications/readme.txt",
    "/Applications/Utilities/Util.app/file",
    "/Library/LaunchAgents/notes.txt",
    "/Library/precious",
};

/// What Anna can exchange in her own folders: something, and a link beside it to what is not hers.
const std::vector<LinkExchange> exchanges{
    {"/Users/sample/Library", "/Users/sample/swap library", "../other/Library"},
    {"/Users/sample/Library/Caches", "/Users/sample/Library/swap caches", "../../other/Library/Caches"},
    {"/Users/sample/.Trash", "/Users/sample/swap trash", "../other/.Trash"},
    {"/Users/sample/Library/LaunchAgents", "/Users/sample/Library/swap agents",
     "../../../Library/LaunchAgents"},
    {"/Users/sample/Library/Application Support/a", "/Users/sample/Library/Application Support/swap",
     "../../../other/Library"},
    {"/Users/sample/Library/Caches/org.example.foo", "/Users/sample/Library/Caches/swap", "../../../other"},
    {"/Users/sample/Library/Caches/org.example.foo/deep", "/Users/sample/Library/Caches/org.example.foo/swap",
     "../../../../other/Library"},
    {"/Users/sample/Applications", "/Users/sample/swap applications", "../../Applications"},
};

bool isWithin(const std::string& path, const std::set<std::string>& places) {
    return std::ranges::any_of(
        places, [&](const auto& place) { return path == place || path.starts_with(place + "/"); });
}

FileIdentity machineIdentity(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

}  // namespace

HostileCaller::HostileCaller(const InstalledRootPart::Programs& programs, std::uint64_t seed)
    : rootPart_(programs), random_(seed) {
    build();
}

std::vector<std::string> HostileCaller::ask() {
    asked_ = nextCall();
    isRaced_ = false;
    const auto status = run(asked_);
    // What a refused order changes is seen a few orders later as well.
    constexpr int together = 20;
    if (status != 0 && ++round_ % together != 0) return {};
    if (disk() == before_) return {};
    ++carriedOut_;
    auto harm = harmDone(asked_, status);
    if (harm.empty() && chance(3) == 0) {
        // Sent again, as it was.
        static_cast<void>(run(asked_));
        harm = harmDone(asked_, 0);
    }
    former_ = asked_;
    build();
    return harm;
}

std::string HostileCaller::asked() const {
    const auto order = decodedOrder(asked_.text);
    return asked_.announced + " for " + (order ? order->home : "nobody") + ", asked by " + asked_.caller +
           (isRaced_ ? " while something is swapped" : "");
}

std::vector<std::string> HostileCaller::unnoticedHarm() {
    const std::vector<std::pair<std::string, std::function<void()>>> harms{
        {"other contents", [&] { volume_.makeFile("/etc/passwd", "changed"); }},
        {"a loss outside", [&] { fs::remove(volume_.outside("precious")); }},
        {"another mode", [&] { ::chmod(volume_.machinePath("/Library/precious").c_str(), 0600); }},
        {"another owner", [&] { ::lchown(volume_.machinePath("/Library/precious").c_str(), anna, anna); }},
        {"something new", [&] { volume_.makeFile("/Users/sample/.Trash/new"); }},
    };
    std::vector<std::string> unnoticed;
    const auto call = InstalledRootPart::callFor(orderToDelete({planned.front()}), std::to_string(anna));
    for (const auto& [name, harm] : harms) {
        harm();
        if (harmDone(call, 0).empty()) unnoticed.push_back(name);
        build();
    }
    return unnoticed;
}

bool HostileCaller::isPossible() {
    const TemporaryDirectory directory;
    return ::lchown(directory.path().c_str(), otto, otto) == 0;
}

void HostileCaller::build() {
    volume_.makeDirectory("/");
    for (const auto& entry : fs::directory_iterator(volume_.machinePath("/"))) fs::remove_all(entry);
    fs::remove_all(volume_.outside());
    volume_.makeDirectory(caches);
    volume_.makeDirectory("/Users/sample/.Trash");
    volume_.makeOutsideFile("precious");
    volume_.makeFile("/etc/passwd");
    for (const auto& path : planned) {
        if (path.ends_with("/link")) {
            volume_.makeLink(path, "/Users/other");
        } else if (path.ends_with("/hard")) {
            fs::create_hard_link(volume_.machinePath("/etc/passwd"), volume_.machinePath(path));
        } else if (path.find("/Caches/") != std::string::npos || path.find('.') == std::string::npos) {
            volume_.makeFile(path + "/deep/file", path);
        } else {
            volume_.makeFile(path, path);
        }
    }
    volume_.makeLink(std::string(caches) + "/out", volume_.outside());
    for (const auto& path : kept) volume_.makeFile(path, path);
    for (const auto& exchange : exchanges) volume_.makeLink(exchange.link, exchange.target);
    give("/Users/sample", anna);
    give("/Users/other", otto);
    // Something of root's in Anna's Library, which only root can remove.
    ::lchown(volume_.machinePath("/Users/sample/Library/Caches/org.example.foo").c_str(), 0, 0);
    before_ = disk();
}

void HostileCaller::give(const std::string& path, uid_t user) const {
    const auto machinePath = volume_.machinePath(path);
    ::lchown(machinePath.c_str(), user, user);
    for (const auto& entry : fs::recursive_directory_iterator(machinePath)) {
        if (!entry.is_symlink() && entry.is_regular_file() && entry.hard_link_count() > 1) continue;
        ::lchown(entry.path().c_str(), user, user);
    }
}

/// Everything there is, the volume's paths as the Mac's, what lies beside it by "outside:".
HostileCaller::Disk HostileCaller::disk() const {
    Disk disk;
    const auto look = [&](const std::string& base, const std::string& prefix) {
        for (const auto& entry : fs::recursive_directory_iterator(base)) {
            struct stat status {};
            if (::lstat(entry.path().c_str(), &status) != 0) continue;
            Look found{status.st_ino, status.st_mode, status.st_uid, status.st_gid, {}};
            if (S_ISREG(status.st_mode)) found.contents = readFile(entry.path());
            if (S_ISLNK(status.st_mode)) found.contents = fs::read_symlink(entry.path());
            disk[prefix + entry.path().string().substr(base.size())] = found;
        }
    };
    look(root(), "");
    if (fs::exists(volume_.outside())) look(volume_.outside(), "outside:/");
    return disk;
}

/// An order made of what a caller could think of, most of it wrong.
RemovalOrder HostileCaller::randomOrder() {
    RemovalOrder order;
    order.root = oneOf({root(), root(), root(), root(), root(), std::string("/"), root() + "/Users/other",
                        root() + "/Users/sample", fs::path(root()).parent_path().string()});
    order.rootIdentity = often() ? machineIdentity(order.root) : FileIdentity{1, chance(5)};
    order.home = oneOf({"/Users/sample", "/Users/sample", "/Users/sample", "/Users/sample", "/Users/sample",
                        "/Users/other", "/", "/Users", "/Users/sample/Library/Caches/link"});
    order.request.mode = chance(2) == 0 ? RemovalMode::trash : RemovalMode::permanent;
    const auto count = 1 + chance(3);
    for (std::uint64_t i = 0; i < count; ++i) order.request.items.push_back(randomItem(order));
    return order;
}

PrivilegedRequest::Item HostileCaller::randomItem(const RemovalOrder& order) {
    PrivilegedRequest::Item item;
    item.source = chance(10) < 8 ? oneOf(planned) : oneOf(forbidden);
    const bool isDaemon = item.source.starts_with("/Library/LaunchDaemons/");
    item.kind = (often() ? isDaemon : !isDaemon) ? Kind::daemon : Kind::item;
    const auto folder = often() ? item.source.substr(0, item.source.rfind('/')) : oneOf(forbidden);
    item.folder = machineIdentity(root() + folder);
    if (order.request.mode == RemovalMode::trash) {
        const auto name = item.source.substr(item.source.rfind('/') + 1);
        item.destination = often()
                               ? "/Users/sample/.Trash/" + name
                               : oneOf({"/Users/sample/.Trash/old", "/Users/other/.Trash/" + name,
                                        "/Users/sample/.Trash/a/" + name, "/etc/" + name,
                                        "/Users/sample/.Trash", "/Users/sample/Library/Caches/link/" + name});
    }
    return item;
}

HostileCaller::Call HostileCaller::madeUpCall() {
    auto order = randomOrder();
    auto text = encodedOrder(order);
    if (!often()) {
        // Bytes turned, cut, doubled.
        for (auto changes = chance(4); changes > 0 && !text.empty(); --changes) {
            const auto at = chance(text.size());
            switch (chance(3)) {
                case 0:
                    text[at] = static_cast<char>(chance(256));
                    break;
                case 1:
                    text.erase(at, 1 + chance(20));
                    break;
                default:
                    text.insert(at, text.substr(chance(text.size()), chance(40)));
            }
        }
        if (const auto decoded = decodedOrder(text)) order = *decoded;
    }
    auto announced = promptText(order);
    if (!often())
        announced =
            oneOf({"", "1 item", "delete 1 item permanently: “Foo.app”", "move 1 item to the Trash: “a”"});
    return {text, announced, oneOf({"20001", "20001", "20001", "20002", "0", "65534", "", "x"})};
}

HostileCaller::Call HostileCaller::nextCall() {
    // One that was granted before, for a disk that has changed since.
    if (!former_.text.empty() && chance(15) == 0) return former_;
    return madeUpCall();
}

int HostileCaller::run(const Call& call) {
    const auto carriedOut = [&] { return isCredulous_ ? carryOut(call) : rootPart_.run(call); };
    if (chance(3) != 0) return carriedOut();
    const auto& [path, link, target] = exchanges[chance(exchanges.size())];
    const auto one = volume_.machinePath(path);
    const auto other = volume_.machinePath(link);
    // Not there any more when an order is sent again.
    if (!fs::exists(fs::symlink_status(one)) || !fs::exists(fs::symlink_status(other))) return carriedOut();
    isRaced_ = true;
    swapper_.start(one, other);
    const auto status = carriedOut();
    const auto swaps = swapper_.stop();
    swaps_ += swaps;
    // As it was, as far as it is there.
    if (swaps % 2 == 0) return status;
    if (!fs::exists(fs::symlink_status(other))) return status;
    if (fs::exists(fs::symlink_status(one))) {
        exchangeEntries(one, other);
    } else {
        fs::rename(other, one);
    }
    return status;
}

/// As a program that believes what it is told; never beyond the scratch machine.
int HostileCaller::carryOut(const Call& call) const {
    const auto order = decodedOrder(call.text);
    if (!order || !order->root.starts_with(root())) return 2;
    for (const auto& item : order->request.items) {
        std::error_code ignored;
        if (item.destination.empty()) {
            fs::remove_all(order->root + item.source, ignored);
        } else {
            fs::rename(order->root + item.source, order->root + item.destination, ignored);
        }
    }
    return 0;
}

std::vector<std::string> HostileCaller::harmDone(const Call& call, int status) const {
    const auto now = disk();
    if (now == before_) return {};
    if (status != 0) return {"something has changed although the order was refused"};
    const auto order = decodedOrder(call.text);
    if (!order) return {"something has changed without an order"};
    std::vector<std::string> harm;
    if (promptText(*order) != call.announced) harm.emplace_back("another order was announced");
    const auto mayGo = whatMayGo(*order, call.caller);
    const bool isOttos = order->home == ottosHome;
    const auto trash = (isOttos ? ottosHome : "/Users/sample") + "/.Trash/";
    std::set<std::string> mayCome;
    for (const auto& item : order->request.items) mayCome.insert(item.destination);
    std::multimap<ino_t, std::string> formerPaths;
    for (const auto& [path, look] : before_) formerPaths.emplace(look.inode, path);
    for (const auto& [path, look] : before_) {
        const auto there = now.find(path);
        if (there != now.end() && there->second == look) continue;
        if (there != now.end() || !isWithin(path, mayGo))
            harm.push_back(path + " has changed, and was not planned");
    }
    for (const auto& [path, look] : now) {
        if (before_.contains(path)) continue;
        if (!path.starts_with(trash) || !isWithin(path, mayCome)) harm.push_back(path + " has come");
        const auto [first, last] = formerPaths.equal_range(look.inode);
        const auto former =
            std::find_if(first, last, [&](const auto& each) { return isWithin(each.second, mayGo); });
        if (former == last) {
            harm.push_back(path + " has come from elsewhere");
            continue;
        }
        const auto formerOwner = before_.at(former->second).owner;
        const bool hasSecondName = path.ends_with("/hard");
        // Where the Trash is no folder at the moment, nothing in it is given to anybody.
        const bool isStillWhosItWas = (isRaced_ || hasSecondName) && look.owner == formerOwner;
        if (!isStillWhosItWas && (look.owner != (isOttos ? otto : anna) || hasSecondName))
            harm.push_back(path + " has another owner");
    }
    return harm;
}

std::set<std::string> HostileCaller::whatMayGo(const RemovalOrder& order, const std::string& caller) const {
    std::set<std::string> mayGo;
    // On a disk that is not this machine's own, an administrator may allow anybody to work for any home.
    const bool isKnown = !caller.empty() && caller.find_first_not_of("0123456789") == std::string::npos;
    if (!isKnown) return mayGo;
    const bool isOttos = order.home == ottosHome;
    for (const auto& item : order.request.items) {
        const bool isAnnas = item.source.starts_with("/Users/sample/");
        const bool isPlanned =
            std::ranges::find(planned, item.source) != planned.end() && !(isOttos && isAnnas);
        if (isPlanned || (isOttos && item.source.starts_with(ottosHome + "/Library/Caches/"))) {
            mayGo.insert(item.source);
        }
    }
    for (const auto& exchange : exchanges) {
        // What Anna puts in an item's place goes in its place, and is put back by name.
        if (isWithin(exchange.path, mayGo)) mayGo.insert(exchange.link);
    }
    return mayGo;
}

std::string HostileCaller::root() const {
    return fs::canonical(volume_.machinePath("/"));
}

}  // namespace orvane::test
