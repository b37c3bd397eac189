#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Models/FileURL.h"
#include "Models/RunningService.h"
#include "Platform/Result.h"

namespace orvane {

/// One running application as the system knows it.
struct RunningApplication {
    std::int32_t processIdentifier = 0;
    /// Valid UTF-8.
    std::optional<std::string> localizedName;
    std::optional<FileURL> executableURL;
    std::optional<std::string> bundleIdentifier;
};

/// The desktop: running applications and the file viewer. Thread-safe; calls may block on the system.
class Workspace {
  public:
    virtual ~Workspace() = default;

    /// The running applications in the system's order. A process that runs from no application bundle is
    /// none.
    virtual std::vector<RunningApplication> runningApplications() const = 0;

    /// Asks the process to quit, politely and without waiting. A process that is gone, or is no longer the
    /// one that was listed, is left alone.
    virtual void terminate(const RunningService& service) = 0;

    /// Shows the file in the desktop's file viewer; quietly nothing where there is none.
    virtual void activateFileViewerSelecting(const FileURL& url) = 0;
};

}  // namespace orvane
