#pragma once

#include <memory>
#include <string>

#include "Platform/FileManager.h"
#include "Platform/Posix/Volume.h"

namespace orvane {

/// The file manager of one volume. `home` and `applicationSupport` are absolute paths inside the volume; the
/// second need not exist.
std::unique_ptr<FileManager> makeFileManager(std::shared_ptr<const Volume> volume, std::string home,
                                             std::string applicationSupport);

}  // namespace orvane
