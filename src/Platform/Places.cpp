#include "Platform/Places.h"

namespace orvane {

std::string folderPath(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    const auto slash = path.rfind('/');
    const auto name = path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") return std::string(path) + "/..";
    return std::string(path.substr(0, slash + 1)) + ".";
}

void Places::addWithFolders(std::string_view path) {
    add(path);
    for (auto end = path.rfind('/'); end != 0 && end != std::string_view::npos;
         end = path.rfind('/', end - 1)) {
        addFoldersUpwards(std::string(path.substr(0, end)) + "/.");
        add(path.substr(0, end));
    }
    addFoldersUpwards("/.");
}

void Places::addFoldersUpwards(std::string path) {
    // Whatever is known is known with everything above it, and above the root there is the root.
    while (add(path)) path += "/..";
}

void Places::addFolder(std::string_view path) {
    add(std::string(path) + "/.");
}

bool Places::contains(const FileURL& url) const {
    return contains(fileManager_.identity(url));
}

bool Places::contains(const Result<FileIdentity>& found) const {
    if (!found) return cannotTell(found.error());
    return !isComplete_ || identities_.contains(*found);
}

/// Whether there is such an entry and it was not known.
bool Places::add(std::string_view path) {
    const auto identity = fileManager_.identity(FileURL::fromPath(path, false));
    if (identity) return identities_.insert(*identity).second;
    if (cannotTell(identity.error())) isComplete_ = false;
    return false;
}

}  // namespace orvane
