#pragma once

#include <sys/types.h>

#include <string>
#include <tl/expected.hpp>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/PrivilegedRunner.h"

namespace orvane {

/// The home that is served, opened on its volume, and who owns it: him alone root gives anything to.
struct ServedHome {
    /// The volume's root folder, opened with O_PATH; somebody else's.
    int root = -1;
    std::string path;
    FileDescriptor folder;
    uid_t owner = 0;
    gid_t group = 0;
};

/// Opens the home, without a link in its path. The error says in a few words why it cannot be served.
tl::expected<ServedHome, std::string> openServedHome(int root, const std::string& path);

/// Opens (O_PATH) the folder that an item lies in, if the item is one that a removal plan of that home can
/// hold and needs an administrator for: an application bundle directly in the machine's or the user's folder
/// of applications; an entry in or below one of the folders of the user's Library in which applications keep
/// theirs; a property list directly in a folder of launch items; an entry of the group containers. A daemon
/// is one of the folder of daemons, and nothing else is.
///
/// These folders are fixed. One of them may be a link, as people move them to other disks, if it leads to a
/// folder of the home's owner (for the machine's own folders, of root's). From there on no link is followed
/// and no mount is crossed. The folder must be the one that the item names, if it names one.
///
/// The error says in one sentence for a person why the administrator's rights are not used for the item.
tl::expected<FileDescriptor, std::string> openFolderOfPlannedItem(const ServedHome& home,
                                                                  const PrivilegedRequest::Item& item);

/// The path of the Trash of a home, and of an entry directly in it its name; empty for any other path.
std::string nameInTrash(const std::string& home, std::string_view path);

}  // namespace orvane
