#pragma once

#include <set>
#include <string>
#include <string_view>

#include "Platform/FileManager.h"

namespace orvane {

/// A set of files and folders, known by device and inode, not by spelling, as they were when they were added.
/// What is not there is not added. The file manager outlives it. Calls block on the disk.
class Places {
  public:
    explicit Places(const FileManager& fileManager) : fileManager_(fileManager) {}

    /// The entry of that path, and every folder in which it lies: those that its path names (where one is a
    /// link, the link and the folder that it leads to), and those above them on the disk.
    void addWithFolders(std::string_view path);
    /// The folder that a path leads to, and those above it on the disk.
    void addFoldersUpwards(std::string path);
    /// The folder that a path leads to.
    void addFolder(std::string_view path);

    /// Whether the URL names one of them, links not followed. False where nothing exists; true where
    /// it cannot be told, or could not when something was added.
    bool contains(const FileURL& url) const;
    /// The same of an entry that has been looked at already.
    bool contains(const Result<FileIdentity>& found) const;

  private:
    bool add(std::string_view path);
    Result<FileIdentity> identity(const std::string& path);

    const FileManager& fileManager_;
    std::set<FileIdentity> identities_;
    bool isComplete_ = true;
};

/// A path that leads to the folder in which the entry of another path lies.
std::string folderPath(std::string_view path);

}  // namespace orvane
