#include "tests/Services/RandomRemoval.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* isProtected = "Orvane does not remove this folder, because other applications use it.";
constexpr const char* climbs =
    "Orvane does not remove this item, because its path leads out of the folder that it names.";
constexpr const char* isLinked = "Orvane does not remove this item, because its path leads through a link.";
const std::string trash = TestVolume::trash();
/// Another way to the home, by a link.
const std::string linkedHome = "/Users/link";
constexpr mode_t readOnly = 0555;

const std::vector<std::string> folders{"/Applications",
                                       "/Library/LaunchAgents",
                                       "/Library/LaunchDaemons",
                                       "/Users/sample/Library/Caches",
                                       "/Users/sample/Library/Logs",
                                       "/Users/sample/Library/Application Support",
                                       lockedFolder,
                                       stubbornFolder,
                                       trash};

const std::vector<std::string> names{"Foo",      "Foo.app",      "com.example.foo", "it's \"a\"\n$(b)",
                                     "-rf",      "\xff\xfe.app", "Foo 2.app",       ".hidden",
                                     "100%41.x", "caf\xc3\xa9.b"};

/// Puts back what an earlier batch took away, so that the tree can go.
void emptyFolder(const fs::path& root) {
    for (auto entry = fs::recursive_directory_iterator(root); entry != fs::recursive_directory_iterator();
         ++entry) {
        if (fs::is_directory(entry->symlink_status())) {
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add);
        }
    }
    for (const auto& entry : fs::directory_iterator(root)) fs::remove_all(entry.path());
}

}  // namespace

RandomBatch RandomBatchMaker::make() {
    using Ending = ShellRunner::Ending;
    static const std::vector<Ending> endings{Ending::runs,          Ending::runs,
                                             Ending::runs,          Ending::runs,
                                             Ending::losesTheFirst, Ending::diesHalfWay,
                                             Ending::isDismissed,   Ending::isKilledHalfWay,
                                             Ending::onlyPretends,  Ending::cannotBeLaunched};
    batch_.isToTrash = isIt(50);
    batch_.ending = oneOf(endings);
    emptyFolder(volume_.machinePath(""));
    makeFolders();
    makeTrash();
    constexpr std::size_t mostEntries = 10;
    for (auto count = below(mostEntries); count != 0; --count) {
        const auto path = oneOf(folders) + "/" + oneOf(names);
        const bool isInTrash = parentOf(path) == trash;
        if (volume_.contains(path) || (isInTrash && !volume_.contains(trash))) continue;
        // A free name in the Trash may be the one that another item gets there.
        if (isInTrash || !isIt(10)) makeEntry(path);
        choose(path, 75);
    }
    for (auto& chosen : batch_.items) {
        // The administrator's items are not looked for.
        const bool isTried = chosen.item.requiresAdministrator || volume_.contains(*chosen.item.detail);
        if (isTried && chosen.item.id().starts_with(linkedHome + "/")) chosen.refusal = isLinked;
    }
    if (isIt(15)) addRefused();
    std::shuffle(batch_.items.begin(), batch_.items.end(), random_);
    for (const auto* const folder : {lockedFolder, stubbornFolder}) {
        ::chmod(volume_.machinePath(folder).c_str(), readOnly);
    }
    return std::move(batch_);
}

std::size_t RandomBatchMaker::below(std::size_t limit) {
    // Not by a distribution of the library: each library has its own.
    return static_cast<std::size_t>(random_() % limit);
}

void RandomBatchMaker::makeFolders() {
    // As of somebody who keeps his logs on another disk.
    volume_.makeDirectory("/Volumes/Data/Logs");
    volume_.makeLink("/Users/sample/Library/Logs", "../../../Volumes/Data/Logs");
    for (const auto& folder : folders) {
        if (folder != trash) volume_.makeDirectory(folder);
    }
    volume_.makeFile("/Users/sample/Documents/letter", "kept");
    volume_.makeFile("/Volumes/Data/kept");
    volume_.makeLink(linkedHome, "sample");
}

/// Nearly always a folder, sometimes with something in it; none yet, or a file.
void RandomBatchMaker::makeTrash() {
    if (isIt(5)) return;
    if (isIt(5)) {
        volume_.makeFile(trash);
        return;
    }
    volume_.makeDirectory(trash);
    for (auto count = below(4); count != 0; --count) {
        const auto path = trash + "/" + oneOf(names);
        if (volume_.contains(path)) continue;
        makeEntry(path);
        if (isIt(10)) choose(path, 100);
    }
}

void RandomBatchMaker::makeEntry(const std::string& path) {
    if (!fs::is_directory(volume_.machinePath(parentOf(path)))) return;
    switch (below(6)) {
        case 0:
            volume_.makeFile(path, path);
            break;
        case 1:
            volume_.makeDirectory(path);
            break;
        case 2:
            volume_.makeLink(path, linkTarget());
            break;
        case 3:
            volume_.makeFIFO(path);
            break;
        default:
            makeContents(path);
    }
    made_.push_back(path);
}

void RandomBatchMaker::makeContents(const std::string& folder) {
    volume_.makeFile(folder + "/Contents/Info.plist", folder);
    volume_.makeLink(folder + "/Contents/link", linkTarget());
    if (isIt(50)) volume_.makeFile(folder + "/Contents/Helpers/-rf/file");
    if (isIt(20)) ::chmod(volume_.machinePath(folder + "/Contents").c_str(), readOnly);
    if (isIt(10)) ::chmod(volume_.machinePath(folder).c_str(), readOnly);
    if (isIt(15)) choose(folder + "/Contents/Info.plist", 100);
}

std::string RandomBatchMaker::linkTarget() {
    static const std::vector<std::string> targets{
        "/Volumes/Data",  "/Volumes/Data/kept", "/nowhere", "Foo.app",
        "../../../../..", "/Users/sample",      ".",        "/Library/Locked"};
    if (isIt(10)) return volume_.outside();
    if (!made_.empty() && isIt(40)) return oneOf(made_);
    return oneOf(targets);
}

/// The same place, named as some catalog might.
std::string RandomBatchMaker::spelled(const std::string& path) {
    const std::string home = TestVolume::home();
    if (path.starts_with(home) && isIt(15)) return linkedHome + path.substr(home.size());
    if (isIt(5)) return "/." + path;
    return path;
}

void RandomBatchMaker::choose(const std::string& path, unsigned percent) {
    const bool isChosen = std::any_of(batch_.items.begin(), batch_.items.end(),
                                      [&](const auto& chosen) { return chosen.item.detail == path; });
    if (!isIt(percent) || isChosen) return;
    const auto kind =
        path.starts_with("/Library/LaunchDaemons") ? RelatedItemKind::launchDaemon : RelatedItemKind::other;
    batch_.items.push_back({{FileURL::fromPath(spelled(path), isIt(50)), kind, 0, isIt(35), path}, {}});
}

void RandomBatchMaker::addRefused() {
    static const std::vector<std::pair<std::string, std::string>> refusals{
        {"/", isProtected},
        {"/Users/sample", isProtected},
        {"/Users/link/Library/Caches", isProtected},
        {"/Library/LaunchDaemons/.", isProtected},
        {"/Users/sample/Library/Caches/..", isProtected},
        {"/Users", isProtected},
        {"/Volumes", isProtected},
        {"/Users/sample/Library/Caches/../../Documents", climbs},
        {"/Users/link/Documents", isLinked},
    };
    const auto& [path, reason] = oneOf(refusals);
    RelatedItem item;
    item.url = FileURL::fromPath(path, true);
    item.requiresAdministrator = isIt(50);
    batch_.items.push_back({std::move(item), reason});
}

}  // namespace orvane::test
