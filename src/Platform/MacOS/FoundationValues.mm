#include "Platform/MacOS/FoundationValues.h"

namespace orvane {

NSURL* urlOf(std::string_view path, bool isDirectory) {
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) return nil;
    return [NSURL fileURLWithFileSystemRepresentation:std::string(path).c_str()
                                          isDirectory:isDirectory
                                        relativeToURL:nil];
}

std::optional<std::string> pathOf(NSURL* url) {
    if (url == nil || ![url isFileURL]) return std::nullopt;
    const char* const path = [url fileSystemRepresentation];
    if (path == nullptr || *path != '/') return std::nullopt;
    return path;
}

std::optional<std::string> textOf(id value) {
    if (![value isKindOfClass:[NSString class]]) return std::nullopt;
    NSData* const bytes = [static_cast<NSString*>(value) dataUsingEncoding:NSUTF8StringEncoding];
    if (bytes == nil) return std::nullopt;
    return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

}  // namespace orvane
