#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

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

/// Splits any text; never fails, judges nothing.
URLParts splitURL(std::string_view text);

/// The text with everything percent-encoded that may not stand where it stands; escapes that are there stay.
/// Absent for what no encoding makes a URL: an empty text, a malformed scheme or port, a malformed address.
std::optional<std::string> encodedURL(std::string_view text);

/// A file system's path as a URL writes it: every byte that may not stand in a path is percent-encoded.
std::string encodedPath(std::string_view path);

/// The bytes that a URL's path stands for. An encoded slash or NUL stays encoded: no name can hold it.
std::string decodedPath(std::string_view urlPath);

}  // namespace orvane
