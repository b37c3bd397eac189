#pragma once

#include <string_view>

#include "Platform/Posix/Volume.h"
#include "Platform/Result.h"

namespace orvane {

/// The Trash of a home, opened with O_PATH; made where there is none. One that is not a real folder of the
/// user's own is an error.
Result<FileDescriptor> openTrash(const Volume& volume, std::string_view home);

/// Moves an entry into the Trash of a home under a name that is free there ("Foo 2.app" where there is a
/// "Foo.app"), without ever replacing or copying anything. The Trash is made where there is none; one that is
/// not a real folder of the user's own is an error, and so is an item that is, holds or lies in the Trash.
Result<void> moveToTrash(const Volume& volume, std::string_view item, std::string_view home);

}  // namespace orvane
