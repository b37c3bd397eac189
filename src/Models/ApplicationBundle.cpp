#include "Models/ApplicationBundle.h"

#include <algorithm>

namespace orvane {

bool isApplicationBundleName(std::string_view name) {
    const auto lowercased = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c;
    };
    return std::ranges::equal(pathExtension(name), std::string_view("app"), {}, lowercased);
}

bool isApplicationBundle(const FileURL& url) {
    return url.fileSystemPath() && isApplicationBundleName(url.lastPathComponent());
}

bool isBelowSystem(const FileURL& url) {
    return url.standardized().path().starts_with("/System/");
}

}  // namespace orvane
