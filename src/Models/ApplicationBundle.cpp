#include "Models/ApplicationBundle.h"

#include "Text/UTF8.h"

namespace orvane {

bool isApplicationBundleName(std::string_view name) {
    return equalsIgnoringCase(pathExtension(name), "app");
}

bool isApplicationBundle(const FileURL& url) {
    return url.fileSystemPath() && isApplicationBundleName(url.lastPathComponent());
}

bool isBelowSystem(const FileURL& url) {
    return url.standardized().path().starts_with("/System/");
}

}  // namespace orvane
