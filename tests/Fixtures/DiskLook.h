#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane::test {

/// Everything below a folder of this machine as it is at one moment, taken by fts(3) and read by path and by
/// inode. It shares no code with the program. Paths begin at that folder, which is "/" to every link in it.
class DiskLook {
  public:
    struct Entry {
        std::uint64_t inode = 0;
        mode_t mode = 0;
        /// Of a folder neither is told: both change with what lies in it.
        std::int64_t size = 0;
        std::int64_t modifiedInNanoseconds = 0;
        /// Of a link.
        std::string target;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    /// The tree holds no hard link, lies on one file system, and its folders can be read.
    explicit DiskLook(const std::string& folder);

    const std::map<std::string, Entry>& entries() const { return entries_; }
    /// The entry at a path that has no link on its way; null where there is none.
    const Entry* entry(const std::string& path) const;
    /// Where a file is by now.
    std::optional<std::string> pathOf(std::uint64_t inode) const;

    /// What a path leads to, links before the last component followed, and that one too where `followsLast`;
    /// absent where that is nothing. `visited` is given every link and folder on the way.
    std::optional<std::string> place(const std::string& path, bool followsLast,
                                     std::vector<std::string>* visited = nullptr) const;

  private:
    std::map<std::string, Entry> entries_;
    std::map<std::uint64_t, std::string> paths_;
};

/// The path of the folder that an entry lies in, and its last component.
std::string parentOf(const std::string& path);
std::string nameOf(const std::string& path);
/// Whether a path is that of the folder or of something in it.
bool isAtOrBelow(const std::string& path, const std::string& folder);

}  // namespace orvane::test
