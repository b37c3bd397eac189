#pragma once

#include <vector>

#include "Models/InstalledApplication.h"
#include "Platform/Bundle.h"
#include "Platform/FileManager.h"
#include "Services/Actor.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// Whether a scan measures what each bundle takes on the disk, which is most of its work, or leaves it at 0.
enum class BundleSizes { measured, left };

/// Finds the application bundles at the top level of the application folders and describes each. Keeps
/// nothing between scans. The platform services outlive it.
class ApplicationScanner : private Actor {
  public:
    ApplicationScanner(const asio::any_io_executor& pool, const FileManager& fileManager,
                       const BundleLoader& bundleLoader, const LocalizedText& localizedText);

    /// Every bundle found now, sorted by name, each installed. Runs on the actor, its size walks over the
    /// pool; resumes the caller on the caller's executor. Never fails: a folder that cannot be read
    /// contributes nothing.
    Task<std::vector<InstalledApplication>> scan(BundleSizes sizes = BundleSizes::measured);

  private:
    asio::any_io_executor pool_;
    const FileManager& fileManager_;
    const BundleLoader& bundleLoader_;
    const LocalizedText& localizedText_;
};

}  // namespace orvane
