#pragma once

#include <memory>
#include <string>

#include "Platform/EntryRemover.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

/// An entry remover of one volume; `home` is the absolute path inside it in which the Trash lies.
std::unique_ptr<EntryRemover> makeEntryRemover(std::shared_ptr<const Volume> volume, std::string home);

}  // namespace orvane
