#include "tests/Fixtures/ApplicationVolume.h"

#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>

#include "Platform/Posix/BundleLoader.h"

namespace orvane::test {

ApplicationVolume::ApplicationVolume()
    : bundleLoader_(makeBundleLoader(files())), localizedText_(makeLocalizedText()) {}

FileURL ApplicationVolume::addApplication(const std::string& path,
                                          const std::map<std::string, std::string>& information) const {
    if (!information.empty()) return addApplicationWithInfo(path, propertyListText(information));
    makeFile(path + "/Contents/MacOS/main");
    return FileURL::fromPath(path, true);
}

FileURL ApplicationVolume::addApplicationWithInfo(const std::string& path,
                                                  const std::string& infoPlist) const {
    makeFile(path + "/Contents/MacOS/main");
    makeFile(path + "/Contents/Info.plist", infoPlist);
    return FileURL::fromPath(path, true);
}

void ApplicationVolume::remove(const std::string& path) const {
    if (std::filesystem::remove_all(machinePath(path)) == 0) {
        throw std::runtime_error("nothing to remove: " + path);
    }
}

std::int64_t ApplicationVolume::allocatedSize(const std::string& path) const {
    struct stat status {};
    if (::lstat(machinePath(path).c_str(), &status) != 0) throw std::runtime_error("nothing at " + path);
    return std::int64_t{status.st_blocks} * 512;
}

std::string propertyListText(const std::map<std::string, std::string>& dictionary) {
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)";
    for (const auto& [key, value] : dictionary) {
        text += "<key>" + key + "</key><string>" + value + "</string>";
    }
    return text + "</dict></plist>";
}

}  // namespace orvane::test
