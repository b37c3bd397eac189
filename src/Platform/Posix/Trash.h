#pragma once

#include <string_view>

#include "Models/FileIdentity.h"
#include "Platform/Posix/Volume.h"
#include "Platform/Result.h"

namespace orvane {

/// Whether an entry of an open folder may be moved into a Trash: EINVAL for one that is, holds or lies in
/// that Trash, EBUSY for a folder on or in which something is mounted, since whoever empties the Trash would
/// lose that, too. The Trash itself need not be open: a folder that it is or lies in, such as the home, will
/// do.
Result<void> checkTrashable(int folder, const char* name, const FileIdentity& trash, int inOrAroundTrash);

/// Moves an entry into the Trash of a home under a name that is free there ("Foo 2.app" where there is a
/// "Foo.app"), without ever replacing or copying anything. What `checkTrashable` refuses is an error. The
/// implementation is the platform's.
Result<void> moveToTrash(const Volume& volume, const Volume::Entry& item, std::string_view home);

}  // namespace orvane
