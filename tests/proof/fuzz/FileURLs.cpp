#include <algorithm>

#include "Models/FileURL.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

namespace {

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c > ' ' && c < '\x7F'; });
}

void checkURL(const FileURL& url) {
    promise(isASCII(url.absoluteString()), "a URL's text is ASCII without blanks");
    const auto again = FileURL::fromString(url.absoluteString());
    promise(!again || (*again == url && again->path() == url.path()), "a URL's text stands for that URL");
    promise(url.standardized().standardized() == url.standardized(), "what is standardized stays so");
    const auto path = url.fileSystemPath();
    if (!path) return;
    promise(path->starts_with('/') && path->find('\0') == std::string_view::npos,
            "files have absolute paths");
    const auto deeper = url.appendingPathComponent("Contents");
    promise(deeper.fileSystemPath().has_value(), "what is in a file's folder is a file");
    promise(deeper.path().ends_with("/Contents"), "a component that is appended is the last one");
}

}  // namespace

/// Any text as a URL's, and any bytes as a file's path, which a URL keeps. The mistake: the path is taken for
/// a URL's text.
void fuzzFileURL(std::string_view bytes, Subject subject) {
    if (const auto url = FileURL::fromString(bytes)) checkURL(*url);
    const bool isDirectory = bytes.size() % 2 == 1;
    const std::string path = "/" + std::string(bytes);
    const auto url = subject == Subject::own ? FileURL::fromPath(path, isDirectory)
                                             : *FileURL::fromString("file://" + path);
    checkURL(url);
    if (path.find('\0') != std::string::npos)
        return promise(!url.fileSystemPath(), "no file's name holds a NUL");
    const auto kept = path.substr(0, std::max<std::size_t>(path.find_last_not_of('/') + 1, 1));
    promise(url.fileSystemPath() == kept, "a URL keeps the bytes of a path");
    promise(!isDirectory || url.absoluteString().ends_with('/'), "a folder's URL ends in a slash");
}

}  // namespace orvane::test
