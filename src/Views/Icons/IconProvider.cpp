#include "Views/Icons/IconProvider.h"

#include <QtCore/QLoggingCategory>
#include <QtGui/QImage>
#include <algorithm>
#include <asio/post.hpp>
#include <atomic>
#include <mutex>
#include <utility>

#include "Views/Icons/IconLoader.h"

namespace orvane {
namespace {

constexpr int defaultPixels = 128;
constexpr int mostPixels = 1024;

int pixelsFor(const QSize& requestedSize) {
    const int side = std::max(requestedSize.width(), requestedSize.height());
    return side > 0 ? std::min(side, mostPixels) : defaultPixels;
}

/// One icon on its way. Lives on the thread that asked; the work is done on the pool's.
class IconResponse : public QQuickImageResponse {
  public:
    /// The last that the pool does to it: whoever hears of the end may delete it.
    void finish(QImage image) {
        {
            const std::lock_guard lock(mutex_);
            image_ = std::move(image);
        }
        emit finished();
    }

    bool isCancelled() const { return isCancelled_; }

    void cancel() override { isCancelled_ = true; }

    QQuickTextureFactory* textureFactory() const override {
        const std::lock_guard lock(mutex_);
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }

  private:
    mutable std::mutex mutex_;
    QImage image_;
    std::atomic<bool> isCancelled_ = false;
};

}  // namespace

IconProvider::IconProvider(asio::any_io_executor pool, const BundleLoader& bundleLoader,
                           const FileManager& fileManager)
    : pool_(std::move(pool)), loader_(std::make_shared<IconLoader>(bundleLoader, fileManager)) {
    // A broken image in a stranger's bundle is shown as the generic icon, and no news to anyone.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio=false"));
}

IconProvider::~IconProvider() = default;

QQuickImageResponse* IconProvider::requestImageResponse(const QString& id, const QSize& requestedSize) {
    auto* const response = new IconResponse;
    asio::post(pool_, [response, loader = loader_, id, pixels = pixelsFor(requestedSize)] {
        // An end is awaited even by those who have cancelled.
        response->finish(response->isCancelled() ? QImage() : loader->icon(id, pixels));
    });
    return response;
}

}  // namespace orvane
