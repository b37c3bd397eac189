#include <fcntl.h>

#include <cerrno>

#include "Platform/MacOS/FoundationValues.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Trash.h"

namespace orvane {

namespace {

/// The kernel's reason for an error of the system's, where it has one.
std::error_code errorOf(NSError* error) {
    for (; error != nil; error = [[error userInfo] objectForKey:NSUnderlyingErrorKey]) {
        const auto code = static_cast<int>([error code]);
        if ([[error domain] isEqualToString:NSPOSIXErrorDomain] && code > 0) {
            return {code, std::generic_category()};
        }
        if ([[error domain] isEqualToString:NSCocoaErrorDomain] && code == NSFileNoSuchFileError) {
            return std::make_error_code(std::errc::no_such_file_or_directory);
        }
    }
    return std::make_error_code(std::errc::operation_not_permitted);
}

/// Whether an item may go to the Trash of that home. The Trash is not opened: the system keeps it from
/// programs that it was not opened to, and moves things there all the same.
Result<void> checkTrashable(const Volume& volume, const Volume::Entry& item, std::string_view home) {
    const auto folder = volume.openPath(home, searchFlags);
    if (!folder) return tl::unexpected(folder.error());
    const auto trash = statusOf(folder->get(), ".Trash");
    // Where it cannot be told which folder it is, none is.
    const auto identity = trash ? identityOf(*trash) : FileIdentity{};
    return checkTrashable(item.folder.get(), item.name.c_str(), identity, folder->get());
}

}  // namespace

Result<void> moveToTrash(const Volume& volume, const Volume::Entry& item, std::string_view home) {
    if (auto checked = checkTrashable(volume, item, home); !checked) return checked;
    const auto before = statusOf(item.folder.get(), item.name.c_str());
    if (!before) return tl::unexpected(before.error());
    // The system takes names: that of the very folder that is open, no link in it.
    const auto folder = realPath(item.folder.get());
    if (!folder) return tl::unexpected(folder.error());
    const auto path = (*folder == "/" ? "" : *folder) + "/" + item.name;
    const bool isFolder = S_ISDIR(before->st_mode);
    const auto notPermitted = std::make_error_code(std::errc::operation_not_permitted);
    const auto error = asked(notPermitted, [&] {
        NSURL* const url = urlOf(path, isFolder);
        NSError* reason = nil;
        if (url == nil) return std::make_error_code(std::errc::invalid_argument);
        const bool isMoved = [[NSFileManager defaultManager] trashItemAtURL:url
                                                           resultingItemURL:nullptr
                                                                      error:&reason];
        return isMoved ? std::error_code() : errorOf(reason);
    });
    if (error) return tl::unexpected(error);
    // Somebody may have exchanged the folder meanwhile: then something else went to the Trash.
    const auto after = statusOf(item.folder.get(), item.name.c_str());
    if (after && identityOf(*after) == identityOf(*before)) {
        return tl::unexpected(std::error_code(ESTALE, std::generic_category()));
    }
    return {};
}

}  // namespace orvane
