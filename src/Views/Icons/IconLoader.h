#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCache>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <cstdint>
#include <mutex>
#include <optional>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

/// The icons of application bundles. Remembers those that were asked for last, within a bound, until their
/// files change. Thread-safe; calls block on the disk. What it reads from outlives its last call.
class IconLoader {
  public:
    IconLoader(const BundleLoader& bundleLoader, const FileManager& fileManager);

    /// The icon that `iconSource` names by this id, at most that many pixels wide and high; whatever is amiss
    /// (no bundle, no icon file, one that cannot be read) the generic icon. Never null. Of an icon that is
    /// remembered nothing is read; its file is asked whether it has changed.
    QImage icon(const QString& id, int pixels);
    /// The icon of an application of which nothing is known.
    QImage genericIcon(int pixels);

  private:
    /// What tells whether a file is still the one that was read.
    struct Version {
        Date modified;
        std::optional<std::int64_t> size;

        friend bool operator==(const Version&, const Version&) = default;
    };
    struct Icon {
        QImage image;
        /// The file that it was read from; the drawing of this program has none.
        std::optional<FileURL> file;
        std::optional<Version> version;
    };

    std::optional<Version> versionOf(const FileURL& file) const;
    std::optional<QImage> remembered(const QByteArray& key);
    QImage remember(const QByteArray& key, Icon icon);

    const BundleLoader& bundleLoader_;
    const FileManager& fileManager_;
    std::mutex mutex_;
    /// Under the mutex.
    QCache<QByteArray, Icon> icons_;
};

}  // namespace orvane
