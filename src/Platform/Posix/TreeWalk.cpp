#include "Platform/Posix/TreeWalk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "Models/FileURL.h"
#include "Platform/Posix/DirectoryStack.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

constexpr auto packageExtensions = std::to_array<std::string_view>({
    "app",      "appex",    "bundle",      "plugin",     "kext", "dext",    "xpc",
    "prefpane", "saver",    "qlgenerator", "mdimporter", "wdgt", "service", "systemextension",
    "action",   "workflow", "component",   "rtfd",       "pkg",  "mpkg",
});

/// Whether a folder of that name is a package, one file to the person who uses it: an application, a plug-in,
/// a preference pane and the like. Told by the extension, whatever its case.
bool isPackageName(std::string_view name) {
    const auto extension = pathExtension(name);
    return std::ranges::any_of(packageExtensions,
                               [&](auto known) { return equalsIgnoringCase(extension, known); });
}

/// Only a regular file is asked for its size; the type of all others stands in the folder.
WalkEntry describe(int folder, const FolderEntry& entry, std::string_view relativePath) {
    WalkEntry described{.relativePath = relativePath,
                        .isRegularFile = false,
                        .fileAllocatedSize = std::nullopt,
                        .totalFileAllocatedSize = std::nullopt};
    if (entry.type != EntryType::regularFile) return described;
    described.isRegularFile = true;
    struct stat status {};
    if (::fstatat(folder, entry.name.data(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        // It can have been replaced since the folder was read.
        described.isRegularFile = S_ISREG(status.st_mode);
        if (described.isRegularFile) described.fileAllocatedSize = allocatedSize(status.st_blocks);
        described.totalFileAllocatedSize = described.fileAllocatedSize;
    }
    return described;
}

FileDescriptor openFolder(int parent, const char* name) {
    return FileDescriptor(
        ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

}  // namespace

WalkOutcome outcomeOf(const std::error_code& reason) {
    return isShortOfDescriptors(reason) ? WalkOutcome::shortOfDescriptors : WalkOutcome::complete;
}

WalkOutcome walkTree(FileDescriptor folder, WalkOptions options, FunctionRef<void(const WalkEntry&)> visit,
                     FunctionRef<bool(FileDescriptor&)> take) {
    auto outcome = WalkOutcome::complete;
    const auto leaveOut = [&](const std::error_code& reason) {
        if (outcome == WalkOutcome::complete) outcome = outcomeOf(reason);
    };
    DirectoryStack stack;
    stack.enter({}, std::move(folder));
    while (!stack.isEmpty()) {
        const auto entry = stack.next();
        if (!entry) {
            // On an error the way back is lost and the stack empty: the rest is left out.
            if (const auto left = stack.leave(); !left) leaveOut(left.error());
            continue;
        }
        if (options.skipsHiddenFiles && entry->name.starts_with('.')) continue;
        const int parent = stack.folder();
        visit(describe(parent, *entry, stack.path(entry->name)));
        if (entry->type != EntryType::folder) continue;
        if (options.skipsPackageDescendants && isPackageName(entry->name)) continue;
        // A folder that cannot be opened has been visited; its contents are left out.
        auto opened = stack.open([&] { return openFolder(parent, entry->name.data()); });
        if (!opened) {
            leaveOut(opened.error());
        } else if (!take(*opened)) {
            stack.enter(entry->name, std::move(*opened));
        }
    }
    return outcome;
}

}  // namespace orvane
