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

}  // namespace

Result<void> Trash::take(WayUp& from, const std::string& name, const struct stat& before) {
    // The Trash is not opened: the system keeps it from programs that it was not opened to, and moves things
    // there all the same.
    const auto opened = folder_.open(volume_, home_, [&] { return volume_.openPath(home_, searchFlags); });
    if (!opened) return opened;
    const auto trash = statusOf(folder_.descriptor(), ".Trash");
    // Where it cannot be told which folder it is, none is.
    const auto identity = trash ? identityOf(*trash) : FileIdentity{};
    auto checked = checkTrashable(from, name.c_str(), before, identity, folder_.wayUp());
    if (!checked) return checked;
    // The system takes names: that of the very folder that is open, no link in it.
    const auto folder = realPath(from.folder());
    if (!folder) return tl::unexpected(folder.error());
    const auto path = (*folder == "/" ? "" : *folder) + "/" + name;
    const bool isFolder = S_ISDIR(before.st_mode);
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
    const auto after = statusOf(from.folder(), name.c_str());
    if (after && identityOf(*after) == identityOf(before)) {
        return tl::unexpected(std::error_code(ESTALE, std::generic_category()));
    }
    return {};
}

}  // namespace orvane
