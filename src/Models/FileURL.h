#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A URL that names a file, behaving as the Mac's file URLs do. The path is bytes: what the file system gave
/// is kept as it is, valid UTF-8 or not. A catalog can hold any URL (relative, of another scheme, with an
/// empty path); such a one is a value like any other, but `fileSystemPath()` is absent for it, so it never
/// leads to a file. A plain value; safe to copy between threads.
class FileURL {
  public:
    /// The empty URL. Names no file.
    FileURL() = default;

    /// The file URL of an absolute path. A directory's URL ends in a slash, as the Mac writes it; its path
    /// does not. A path that is not absolute makes a URL that names no file.
    static FileURL fromPath(std::string_view path, bool isDirectory);

    /// The URL that a text stands for, percent-encoded where it was not. Absent for an empty text.
    static std::optional<FileURL> fromString(std::string_view text);

    /// The URL as text: scheme, percent-encoded path, trailing slash for a directory URL. Always ASCII.
    const std::string& absoluteString() const { return absoluteString_; }

    /// The percent-decoded path without trailing separator; the identity of records. May be empty or
    /// relative.
    const std::string& path() const { return path_; }

    /// The path, if this names a file: scheme "file", no foreign host, an absolute path without NUL. Else
    /// absent, and then the file does not exist for this program: it is not probed, not read, not removed.
    std::optional<std::string_view> fileSystemPath() const;

    /// The last component of the path; "/" for the root.
    std::string lastPathComponent() const;
    /// The text after the last full stop of the last component; empty where that is no extension.
    std::string pathExtension() const;

    FileURL deletingPathExtension() const;
    /// Appends one text as it is, slashes within it included ("Library/Caches/x"). To a URL without a path
    /// nothing can be appended: it stays as it is.
    FileURL appendingPathComponent(std::string_view component, bool isDirectory = false) const;
    /// Dot and dot-dot components resolved, no symbolic link followed.
    FileURL standardized() const;

    /// Two URLs are equal when their texts are.
    friend bool operator==(const FileURL& a, const FileURL& b) {
        return a.absoluteString_ == b.absoluteString_;
    }

  private:
    explicit FileURL(std::string absoluteString);
    FileURL withEncodedPath(std::string_view path) const;

    std::string absoluteString_;
    std::string path_;
    bool isLocalFile_ = false;
};

/// The text after the last full stop of a file's name; empty where that is no extension. A view into the
/// name.
std::string_view pathExtension(std::string_view name);

}  // namespace orvane

template <>
struct std::hash<orvane::FileURL> {
    std::size_t operator()(const orvane::FileURL& url) const noexcept {
        return std::hash<std::string>{}(url.absoluteString());
    }
};
