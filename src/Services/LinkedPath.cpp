#include "Services/LinkedPath.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace orvane {

namespace {

/// The path without empty and dot components. Dot-dot stays: where it leads is up to the disk.
std::string withoutDots(std::string_view path) {
    std::string result;
    for (std::size_t begin = 0; begin < path.size();) {
        const auto end = std::min(path.find('/', begin), path.size());
        const auto component = path.substr(begin, end - begin);
        if (!component.empty() && component != ".") result.append("/").append(component);
        begin = end + 1;
    }
    return result;
}

/// How much of the path is the fixed folder that it lies in.
std::size_t fixedLength(std::string_view path, const SystemFolders& folders) {
    std::size_t length = 0;
    const auto consider = [&](const FileURL& folder) {
        if (path.starts_with(folder.path() + "/")) length = std::max(length, folder.path().size());
    };
    for (const auto& folder : folders.shared()) consider(folder);
    consider(folders.home);
    return length;
}

bool mayBeLink(const FileManager& fileManager, std::string_view path) {
    const auto values = fileManager.resourceValues(FileURL::fromPath(path, false));
    return values ? values->isSymbolicLink : cannotTell(values.error());
}

}  // namespace

bool leadsThroughLink(const FileManager& fileManager, const SystemFolders& folders, const FileURL& url) {
    const auto fileSystemPath = url.fileSystemPath();
    if (!fileSystemPath) return false;
    const auto path = withoutDots(*fileSystemPath);
    for (auto end = path.find('/', fixedLength(path, folders) + 1); end != std::string::npos;
         end = path.find('/', end + 1)) {
        if (mayBeLink(fileManager, std::string_view(path).substr(0, end))) return true;
    }
    return false;
}

}  // namespace orvane
