#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Platform/FileManager.h"
#include "Platform/Posix/DirectoryReader.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// The folder that an open one lies in, open for reading. ESTALE where it is not the expected one.
Result<FileDescriptor> openAbove(int folder, const FileIdentity& expected);

/// The way from a folder down into its tree and back up, however deep the tree: the deepest folders are open,
/// the others are found again by "..". Memory goes by the depth, plus the unread entries of the folders that
/// had to be closed. For one thread at a time.
class DirectoryStack {
  public:
    static constexpr std::size_t maximumOpenFolders = 32;

    bool isEmpty() const { return levels_.empty(); }
    /// The deepest folder, which all operations below mean by "here".
    int folder() const { return here().folder(); }
    /// The next entry here; absent at the end, or with `error` where the folder cannot be read further.
    std::optional<FolderEntry> next() { return here().next(); }
    std::error_code error() const { return here().error(); }
    /// The path of an entry here, relative to the first folder; valid until the next call.
    const std::string& path(std::string_view name);

    /// Gives what `open` opens, which says in errno why it does not. Where descriptors run out, folders
    /// further up are closed and `open` is called again.
    Result<FileDescriptor> open(FunctionRef<FileDescriptor()> open);

    /// Goes down into the entry `name`, a folder that is open for reading; the empty stack goes into its
    /// first folder.
    void enter(std::string_view name, FileDescriptor folder);
    /// The same for a folder that is still to be opened.
    std::error_code enter(std::string_view name, FunctionRef<FileDescriptor()> open);

    /// Goes back up and gives the folder that it left; from the first folder it leads to the empty stack. An
    /// error, and an empty stack too, when the folder above is not where it was.
    Result<FileDescriptor> leave();

  private:
    struct Level {
        /// Bytes of `path_` that lead into the folder, its slash included.
        std::size_t prefixLength = 0;
        /// Set while the folder is closed: which one it is and what is left to read in it.
        FileIdentity identity;
        std::string remaining;
    };

    DirectoryReader& here() { return readers_[(levels_.size() - 1) % maximumOpenFolders]; }
    const DirectoryReader& here() const { return readers_[(levels_.size() - 1) % maximumOpenFolders]; }
    bool closeUppermost();
    std::error_code reopenAbove(int folder);

    std::vector<Level> levels_;
    /// The level closest to the top whose folder is open, and with it all below.
    std::size_t firstOpen_ = 0;
    /// The open folders, each at its level modulo the size of the window.
    std::array<DirectoryReader, maximumOpenFolders> readers_;
    std::string path_;
};

}  // namespace orvane
