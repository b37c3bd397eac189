#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCache>
#include <QtGui/QImage>
#include <mutex>
#include <optional>
#include <string>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

/// The icons of application bundles. Remembers those that were asked for last, within a bound, until their
/// files change. Thread-safe; calls block on the disk. What it reads from outlives its last call.
class IconLoader {
  public:
    IconLoader(const BundleLoader& bundleLoader, const FileManager& fileManager);

    /// The icon of the bundle, at most that many pixels wide and high; whatever is amiss (no bundle, no icon
    /// file, one that cannot be read) the generic icon. Never null.
    QImage icon(const std::string& bundlePath, int pixels);
    /// The icon of an application of which nothing is known.
    QImage genericIcon(int pixels);

  private:
    QImage bundleIcon(const std::string& bundlePath, int pixels);
    template <typename Make>
    QImage remembered(const QByteArray& key, Make make);

    const BundleLoader& bundleLoader_;
    const FileManager& fileManager_;
    std::mutex mutex_;
    /// Under the mutex.
    QCache<QByteArray, QImage> images_;
};

}  // namespace orvane
