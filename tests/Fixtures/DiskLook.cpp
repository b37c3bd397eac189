#include "tests/Fixtures/DiskLook.h"

#include <fts.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <deque>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace orvane::test {
namespace {

constexpr int mostLinksOnTheWay = 40;

DiskLook::Entry entryOf(const struct stat& status, const std::string& path) {
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    DiskLook::Entry entry{status.st_ino, status.st_mode, 0, 0, {}};
    if (S_ISDIR(status.st_mode)) return entry;
    entry.size = status.st_size;
    entry.modifiedInNanoseconds = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec;
    if (S_ISLNK(status.st_mode)) entry.target = std::filesystem::read_symlink(path).string();
    return entry;
}

/// Puts the components of a path before those that are left to walk.
void prepend(std::deque<std::string>& components, const std::string& path) {
    std::vector<std::string> more;
    for (std::size_t start = 0; start <= path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        more.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    components.insert(components.begin(), more.begin(), more.end());
}

}  // namespace

DiskLook::DiskLook(const std::string& folder) {
    auto root = folder;
    while (root.ends_with('/')) root.pop_back();
    char* const roots[] = {root.data(), nullptr};
    const auto close = [](FTS* walk) { ::fts_close(walk); };
    const std::unique_ptr<FTS, decltype(close)> walk(::fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR, nullptr),
                                                     close);
    if (!walk) throw std::runtime_error("no look at " + root);
    while (const FTSENT* const found = ::fts_read(walk.get())) {
        if (found->fts_info == FTS_DP || found->fts_level == 0) continue;
        if (found->fts_errno != 0) throw std::runtime_error("no look at " + std::string(found->fts_path));
        const std::string path = found->fts_path;
        const auto entry = entryOf(*found->fts_statp, path);
        paths_.emplace(entry.inode, path.substr(root.size()));
        entries_.emplace(path.substr(root.size()), entry);
    }
}

const DiskLook::Entry* DiskLook::entry(const std::string& path) const {
    const auto found = entries_.find(path);
    return found == entries_.end() ? nullptr : &found->second;
}

std::optional<std::string> DiskLook::pathOf(std::uint64_t inode) const {
    const auto found = paths_.find(inode);
    if (found == paths_.end()) return std::nullopt;
    return found->second;
}

std::optional<std::string> DiskLook::place(const std::string& path, bool followsLast,
                                           std::vector<std::string>* visited) const {
    std::deque<std::string> components;
    prepend(components, path);
    std::string current;
    for (int links = 0; !components.empty();) {
        const auto component = components.front();
        components.pop_front();
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            current = current.empty() ? current : parentOf(current);
            continue;
        }
        const auto next = current + "/" + component;
        const auto* const found = entry(next);
        if (found == nullptr) return std::nullopt;
        if (visited != nullptr) visited->push_back(next);
        const bool isLast = components.empty();
        if (!isLast && !S_ISDIR(found->mode) && !S_ISLNK(found->mode)) return std::nullopt;
        if (!S_ISLNK(found->mode) || (isLast && !followsLast)) {
            current = next;
            continue;
        }
        if (++links > mostLinksOnTheWay) return std::nullopt;
        if (found->target.starts_with('/')) current.clear();
        prepend(components, found->target);
    }
    return current;
}

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool isAtOrBelow(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

}  // namespace orvane::test
