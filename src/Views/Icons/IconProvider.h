#pragma once

#include <QtQuick/QQuickImageProvider>
#include <asio/any_io_executor.hpp>
#include <memory>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

class IconLoader;

/// Gives views the icons that `iconSource` names, as the image provider "icons". Reads and decodes on a pool
/// of its own, so that icons do not wait behind long work; that pool's threads end before the platform
/// services do.
class IconProvider : public QQuickAsyncImageProvider {
  public:
    IconProvider(asio::any_io_executor pool, const BundleLoader& bundleLoader,
                 const FileManager& fileManager);
    ~IconProvider() override;

    /// A square of at least `requestedSize` pixels' greater side where the icon's file has one.
    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;

  private:
    asio::any_io_executor pool_;
    std::shared_ptr<IconLoader> loader_;
};

}  // namespace orvane
