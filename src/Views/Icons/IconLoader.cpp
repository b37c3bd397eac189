#include "Views/Icons/IconLoader.h"

#include <QtCore/QByteArrayView>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "Views/Icons/IconFile.h"
#include "Views/Icons/IconSource.h"

namespace orvane {
namespace {

constexpr std::size_t largestFile = std::size_t{16} << 20;
constexpr qsizetype rememberedBytes = qsizetype{32} << 20;

QImage renderedGenericIcon(int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/qt/qml/Orvane/Icons/generic-application.svg"));
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

QByteArrayView bytesOf(std::string_view bytes) {
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

/// The system draws for screens of any density.
QImage fitted(const QImage& image, int pixels) {
    if (std::max(image.width(), image.height()) <= pixels) return image;
    return image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

IconLoader::IconLoader(const BundleLoader& bundleLoader, const FileManager& fileManager)
    : bundleLoader_(bundleLoader), fileManager_(fileManager), icons_(rememberedBytes) {}

QImage IconLoader::icon(const QString& id, int pixels) {
    const QByteArray key = id.toUtf8() + '/' + QByteArray::number(pixels);
    if (const auto image = remembered(key)) return *image;
    const auto bundlePath = bundlePathOfIcon(id);
    if (!bundlePath) return genericIcon(pixels);
    const auto bundle = FileURL::fromPath(*bundlePath, true);
    if (const auto drawn = bundleLoader_.iconImage(bundle, pixels)) {
        const auto version = versionOf(bundle);
        const QImage image = QImage::fromData(bytesOf(*drawn), "PNG");
        if (version && !image.isNull()) return remember(key, {fitted(image, pixels), bundle, version});
    }
    const auto file = bundleLoader_.iconFile(bundle);
    // Before it is read: what changes it meanwhile is noticed at the next request.
    const auto version = file ? versionOf(*file) : std::nullopt;
    if (!version) return genericIcon(pixels);
    const auto bytes = fileManager_.contents(*file, largestFile);
    const QImage image = bytes ? imageFromIconFile(*bytes, pixels) : QImage();
    return image.isNull() ? genericIcon(pixels) : remember(key, {image, file, version});
}

QImage IconLoader::genericIcon(int pixels) {
    const QByteArray key = "generic/" + QByteArray::number(pixels);
    const auto image = remembered(key);
    return image ? *image : remember(key, {renderedGenericIcon(pixels), std::nullopt, std::nullopt});
}

std::optional<IconLoader::Version> IconLoader::versionOf(const FileURL& file) const {
    const auto values = fileManager_.resourceValues(file);
    if (!values) return std::nullopt;
    return Version{values->contentModificationDate, values->fileAllocatedSize};
}

std::optional<QImage> IconLoader::remembered(const QByteArray& key) {
    Icon icon;
    {
        const std::lock_guard lock(mutex_);
        const Icon* const found = icons_.object(key);
        if (found == nullptr) return std::nullopt;
        icon = *found;
    }
    if (icon.file && versionOf(*icon.file) != icon.version) return std::nullopt;
    return icon.image;
}

/// Two threads may make the same image; that is rarer, and cheaper, than waiting for each other's files.
QImage IconLoader::remember(const QByteArray& key, Icon icon) {
    QImage image = icon.image;
    const std::lock_guard lock(mutex_);
    icons_.insert(key, new Icon(std::move(icon)), image.sizeInBytes());
    return image;
}

}  // namespace orvane
