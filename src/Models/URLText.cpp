#include "Models/URLText.h"

#include <algorithm>
#include <cstddef>

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
char lowercased(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
    return std::equal(text.begin(), text.end(), lowercase.begin(), lowercase.end(),
                      [](char a, char b) { return lowercased(a) == b; });
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
    return static_cast<unsigned>(isDigit(c) ? c - '0' : lowercased(c) - 'a' + 10);
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

}  // namespace

bool URLParts::isFile() const {
    return scheme && equalsIgnoringCase(*scheme, "file");
}

bool URLParts::isLocalFile() const {
    const bool isHere = !authority || authority->empty() || equalsIgnoringCase(*authority, "localhost");
    return isFile() && isHere && path.starts_with('/');
}

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

std::string encodedPath(std::string_view path) {
    return encoded(path, pathExtras, false);
}

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

}  // namespace orvane
