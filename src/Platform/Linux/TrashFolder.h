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

/// Whether an entry of an open folder may be moved into an open Trash.
Result<void> checkTrashable(int folder, const char* name, int trash);

/// Moves an entry of an open folder into an open Trash under that name and no other: EEXIST where it is
/// taken. What `checkTrashable` refuses is not moved, nor what lies on another file system (EXDEV).
Result<void> moveIntoTrash(int folder, const char* name, int trash, const char* nameThere);

}  // namespace orvane
