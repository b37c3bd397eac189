#include "Models/FileURL.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "Text/UTF8.h"

namespace orvane {

namespace {

// Plain ASCII tests: those of the standard library depend on the locale.
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isOneOf(char c, std::string_view characters) {
    return characters.find(c) != std::string_view::npos;
}

/// What may stand in every part unencoded: the unreserved characters and the sub-delimiters.
bool isPlain(char c) {
    return isLetter(c) || isDigit(c) || isOneOf(c, "-._~!$&'()*+,;=");
}

constexpr std::string_view userExtras = ":";
constexpr std::string_view hostExtras;
constexpr std::string_view pathExtras = ":@/";
constexpr std::string_view suffixExtras = ":@/?";

void appendEscape(std::string& text, char byte) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    text += '%';
    text += digits[value >> 4U];
    text += digits[value & 0xFU];
}

bool isEscape(std::string_view text) {
    return text.size() >= 3 && text[0] == '%' && isHexDigit(text[1]) && isHexDigit(text[2]);
}

unsigned hexValue(char c) {
    return static_cast<unsigned>(isDigit(c) ? c - '0' : lowercasedASCII(c) - 'a' + 10);
}

std::string encoded(std::string_view text, std::string_view extras, bool keepsEscapes) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool stays = isPlain(c) || isOneOf(c, extras) || (keepsEscapes && isEscape(text.substr(i)));
        if (stays) {
            result += c;
        } else {
            appendEscape(result, c);
        }
    }
    return result;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || isOneOf(c, "+-.");
    });
}

/// Nothing, or a colon and digits.
bool isPort(std::string_view text) {
    return text.empty() || (text.front() == ':' && std::all_of(text.begin() + 1, text.end(), isDigit));
}

std::optional<std::string> encodedHostAndPort(std::string_view text) {
    std::size_t hostEnd = 0;
    std::string host;
    if (text.starts_with('[')) {
        const auto bracket = text.find(']');
        if (bracket == std::string_view::npos || bracket == 1) return std::nullopt;
        const auto address = text.substr(1, bracket - 1);
        const auto isAddressCharacter = [](char c) { return isHexDigit(c) || isOneOf(c, ":."); };
        if (!std::all_of(address.begin(), address.end(), isAddressCharacter)) return std::nullopt;
        hostEnd = bracket + 1;
        host = text.substr(0, hostEnd);
    } else {
        hostEnd = std::min(text.find(':'), text.size());
        host = encoded(text.substr(0, hostEnd), hostExtras, true);
    }
    const auto port = text.substr(hostEnd);
    if (!isPort(port)) return std::nullopt;
    return host.append(port);
}

std::optional<std::string> encodedAuthority(std::string_view text) {
    const auto at = text.rfind('@');
    if (at == std::string_view::npos) return encodedHostAndPort(text);
    auto host = encodedHostAndPort(text.substr(at + 1));
    if (!host) return std::nullopt;
    return encoded(text.substr(0, at), userExtras, true) + "@" + *host;
}

std::string encodedSuffix(std::string_view suffix) {
    if (suffix.empty()) return {};
    // The first number sign begins the fragment; a second one has to be encoded, like anything else.
    const auto hash = std::min(suffix.find('#'), suffix.size());
    std::string result = encoded(suffix.substr(0, hash), suffixExtras, true);
    if (hash < suffix.size()) result += "#" + encoded(suffix.substr(hash + 1), suffixExtras, true);
    return result;
}

std::string_view takePrefix(std::string_view& text, std::size_t length) {
    const auto prefix = text.substr(0, length);
    text.remove_prefix(prefix.size());
    return prefix;
}

/// The parts of a URL's text, as they stand in it. Joined in this order they are the text again, with ":"
/// after a scheme and "//" before an authority. Views into the text that was split.
struct URLParts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    /// The query and the fragment, each with its mark; empty when there is none.
    std::string_view suffix;

    /// Scheme "file", and a path on this machine that begins at the root.
    bool isLocalFile() const;
    bool isFile() const;
};

bool URLParts::isFile() const {
    return scheme && equalsIgnoringCase(*scheme, "file");
}

bool URLParts::isLocalFile() const {
    const bool isHere = !authority || authority->empty() || equalsIgnoringCase(*authority, "localhost");
    return isFile() && isHere && path.starts_with('/');
}

/// Splits any text; never fails, judges nothing.
URLParts splitURL(std::string_view text) {
    URLParts parts;
    const auto mark = text.find_first_of(":/?#");
    if (mark != std::string_view::npos && text[mark] == ':') {
        parts.scheme = takePrefix(text, mark);
        text.remove_prefix(1);
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        parts.authority = takePrefix(text, text.find_first_of("/?#"));
    }
    parts.path = takePrefix(text, text.find_first_of("?#"));
    parts.suffix = text;
    return parts;
}

/// The text with everything percent-encoded that may not stand where it stands; escapes that are there stay.
/// Absent for what no encoding makes a URL: an empty text, a malformed scheme or port, a malformed address.
std::optional<std::string> encodedURL(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const auto parts = splitURL(text);
    std::string result;
    if (parts.scheme) {
        if (!isScheme(*parts.scheme)) return std::nullopt;
        result.append(*parts.scheme).append(":");
    }
    if (parts.authority) {
        const auto authority = encodedAuthority(*parts.authority);
        if (!authority) return std::nullopt;
        result.append("//").append(*authority);
    }
    return result + encoded(parts.path, pathExtras, true) + encodedSuffix(parts.suffix);
}

/// A file system's path as a URL writes it: every byte that may not stand in a path is percent-encoded.
std::string encodedPath(std::string_view path) {
    return encoded(path, pathExtras, false);
}

/// The bytes that a URL's path stands for. An encoded slash or NUL stays encoded: no name can hold it.
std::string decodedPath(std::string_view urlPath) {
    std::string path;
    path.reserve(urlPath.size());
    for (std::size_t i = 0; i < urlPath.size(); ++i) {
        const auto rest = urlPath.substr(i);
        if (isEscape(rest) && rest.substr(0, 3) != "%00" && !equalsIgnoringCase(rest.substr(0, 3), "%2f")) {
            path += static_cast<char>(hexValue(rest[1]) << 4U | hexValue(rest[2]));
            i += 2;
        } else {
            path += urlPath[i];
        }
    }
    return path;
}

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
