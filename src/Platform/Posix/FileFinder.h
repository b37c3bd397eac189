#pragma once

#include <string>
#include <string_view>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/Volume.h"
#include "Platform/Result.h"

namespace orvane {

/// Looks for one file after the other, and keeps the folder of the last one open: what lies in the same one
/// is found there by its name, without the way from the root. For one thread; the volume outlives it.
class FileFinder {
  public:
    explicit FileFinder(const Volume& volume) : volume_(volume) {}

    /// Whether something is there, links followed inside the root; errors as of `Volume::find`.
    Result<void> find(std::string_view path);

  private:
    bool isInKeptFolder(const Volume::Place& place);

    const Volume& volume_;
    /// The folder that is open, by the path that led to it.
    std::string path_;
    FileDescriptor folder_;
};

}  // namespace orvane
