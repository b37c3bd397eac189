#pragma once

#include <string_view>

#include "Platform/Posix/Volume.h"
#include "Platform/Result.h"

namespace orvane {

/// The Trash of a home, opened with O_PATH; made where there is none. One that is not a real folder of the
/// user's own is an error.
Result<FileDescriptor> openTrash(const Volume& volume, std::string_view home);

/// The same Trash in a home that is open.
Result<FileDescriptor> openTrash(int home);

/// Whether an entry of an open folder may be moved into an open Trash: EINVAL for one that is, holds or lies
/// in that Trash, EBUSY for a folder on or in which something is mounted, since whoever empties the Trash
/// would lose that, too.
Result<void> checkTrashable(int folder, const char* name, int trash);

/// Moves an entry of an open folder into an open Trash under that name and no other: EEXIST where it is
/// taken. What `checkTrashable` refuses is not moved, nor what lies on another file system (EXDEV).
Result<void> moveIntoTrash(int folder, const char* name, int trash, const char* nameThere);

/// Moves an entry into the Trash of a home under a name that is free there ("Foo 2.app" where there is a
/// "Foo.app"), without ever replacing or copying anything. The Trash is made where there is none; one that is
/// not a real folder of the user's own is an error, and so is an item that `checkTrashable` refuses.
Result<void> moveToTrash(const Volume& volume, const Volume::Entry& item, std::string_view home);

}  // namespace orvane
