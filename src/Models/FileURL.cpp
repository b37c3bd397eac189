#include "Models/FileURL.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "Models/URLText.h"

namespace orvane {

namespace {

std::string_view withoutTrailingSlashes(std::string_view path) {
    const auto last = path.find_last_not_of('/');
    if (last == std::string_view::npos) return path.substr(0, 1);
    return path.substr(0, last + 1);
}

std::string_view lastComponent(std::string_view path) {
    const auto end = withoutTrailingSlashes(path);
    if (end == "/") return end;
    return end.substr(end.rfind('/') + 1);
}

/// Where the extension's full stop is; absent for a name that ends in it, or has nothing or only one more
/// full stop before it.
std::optional<std::size_t> extensionPoint(std::string_view name) {
    const auto point = name.rfind('.');
    if (point == std::string_view::npos || point + 1 == name.size()) return std::nullopt;
    const auto base = name.substr(0, point);
    if (base.empty() || base == ".") return std::nullopt;
    return point;
}

/// A space or a mark that turns the writing direction makes what follows the full stop no extension: it could
/// be dressed up as another one.
bool mayBeExtension(std::string_view text) {
    static constexpr std::array<std::string_view, 13> forbidden{
        " ",      "\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C",
        "\u202D", "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"};
    return std::none_of(forbidden.begin(), forbidden.end(),
                        [text](std::string_view mark) { return text.find(mark) != std::string_view::npos; });
}

/// An absolute path in its shortest form: no empty, dot or dot-dot component. Components may be encoded.
std::string resolvedPath(std::string_view path) {
    std::vector<std::string_view> components;
    for (std::size_t begin = 0; begin < path.size();) {
        const auto end = std::min(path.find('/', begin), path.size());
        const auto component = path.substr(begin, end - begin);
        const auto name = decodedPath(component);
        if (name == "..") {
            if (!components.empty()) components.pop_back();
        } else if (!name.empty() && name != ".") {
            components.push_back(component);
        }
        begin = end + 1;
    }
    std::string result;
    for (const auto component : components) result.append("/").append(component);
    if (result.empty() || path.ends_with('/')) result += "/";
    return result;
}

}  // namespace

FileURL::FileURL(std::string absoluteString) : absoluteString_(std::move(absoluteString)) {
    const auto parts = splitURL(absoluteString_);
    path_ = decodedPath(withoutTrailingSlashes(parts.path));
    isLocalFile_ = parts.isLocalFile() && parts.path.find("%00") == std::string_view::npos;
}

FileURL FileURL::fromPath(std::string_view path, bool isDirectory) {
    std::string text = path.starts_with('/') ? "file://" : "file:";
    text += encodedPath(withoutTrailingSlashes(path));
    // No path at all must not become the root by the slash that marks a directory.
    if (!isDirectory || path.empty()) return FileURL(std::move(text));
    text += path.substr(withoutTrailingSlashes(path).size());
    if (!text.ends_with('/')) text += '/';
    return FileURL(std::move(text));
}

std::optional<FileURL> FileURL::fromString(std::string_view text) {
    auto url = encodedURL(text);
    if (!url) return std::nullopt;
    return FileURL(std::move(*url));
}

std::optional<std::string_view> FileURL::fileSystemPath() const {
    if (!isLocalFile_) return std::nullopt;
    return path_;
}

std::string FileURL::lastPathComponent() const {
    return std::string(lastComponent(path_));
}

std::string FileURL::pathExtension() const {
    return std::string(orvane::pathExtension(lastComponent(path_)));
}

bool FileURL::hasDirectoryPath() const {
    return splitURL(absoluteString_).path.ends_with('/');
}

FileURL FileURL::withEncodedPath(std::string_view path) const {
    const auto old = splitURL(absoluteString_);
    std::string text =
        absoluteString_.substr(0, absoluteString_.size() - old.path.size() - old.suffix.size());
    return FileURL(text.append(path).append(old.suffix));
}

FileURL FileURL::deletingPathExtension() const {
    // On the encoded path, as the Mac does it: a name that looks encoded twice comes out as it went in.
    const auto path = splitURL(absoluteString_).path;
    const auto trimmed = withoutTrailingSlashes(path);
    const auto name = lastComponent(trimmed);
    const auto point = extensionPoint(name);
    if (!point) return *this;
    std::string shortened(trimmed.substr(0, trimmed.size() - (name.size() - *point)));
    return withEncodedPath(shortened.append(path.substr(trimmed.size())));
}

FileURL FileURL::appendingPathComponent(std::string_view component, bool isDirectory) const {
    std::string path(splitURL(absoluteString_).path);
    if (path.empty()) return *this;
    if (!path.ends_with('/')) path += '/';
    component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));
    path += encodedPath(component);
    if (!component.empty()) path.resize(withoutTrailingSlashes(path).size());
    if (isDirectory && !path.ends_with('/')) path += '/';
    return withEncodedPath(path);
}

FileURL FileURL::standardized() const {
    const auto parts = splitURL(absoluteString_);
    if (!parts.isFile() || !parts.path.starts_with('/')) return *this;
    return withEncodedPath(resolvedPath(parts.path));
}

std::string_view pathExtension(std::string_view name) {
    const auto point = extensionPoint(name);
    if (!point) return {};
    const auto extension = name.substr(*point + 1);
    return mayBeExtension(extension) ? extension : std::string_view();
}

}  // namespace orvane
