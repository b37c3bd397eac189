#include "Views/Icons/IconLoader.h"

#include <QtCore/QString>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <cstddef>

#include "Views/Icons/IconFile.h"

namespace orvane {
namespace {

constexpr std::size_t largestFile = std::size_t{16} << 20;
constexpr qsizetype rememberedBytes = qsizetype{32} << 20;

QByteArray keyOf(const std::string& path, const ResourceValues& values, int pixels) {
    return QByteArray::fromStdString(path) + '\0' +
           QByteArray::number(values.contentModificationDate.timeIntervalSinceReferenceDate, 'g', 17) + '/' +
           QByteArray::number(static_cast<qlonglong>(values.fileAllocatedSize.value_or(0))) + '/' +
           QByteArray::number(pixels);
}

QImage renderedGenericIcon(int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/qt/qml/Orvane/Icons/generic-application.svg"));
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

}  // namespace

IconLoader::IconLoader(const BundleLoader& bundleLoader, const FileManager& fileManager)
    : bundleLoader_(bundleLoader), fileManager_(fileManager), images_(rememberedBytes) {}

QImage IconLoader::icon(const std::string& bundlePath, int pixels) {
    const QImage image = bundleIcon(bundlePath, pixels);
    return image.isNull() ? genericIcon(pixels) : image;
}

QImage IconLoader::genericIcon(int pixels) {
    return remembered("generic/" + QByteArray::number(pixels),
                      [pixels] { return renderedGenericIcon(pixels); });
}

QImage IconLoader::bundleIcon(const std::string& bundlePath, int pixels) {
    const auto file = bundleLoader_.iconFile(FileURL::fromPath(bundlePath, true));
    if (!file) return {};
    const auto values = fileManager_.resourceValues(*file);
    if (!values) return {};
    return remembered(keyOf(file->path(), *values, pixels), [&]() -> QImage {
        const auto bytes = fileManager_.contents(*file, largestFile);
        return bytes ? imageFromIconFile(*bytes, pixels) : QImage();
    });
}

template <typename Make>
QImage IconLoader::remembered(const QByteArray& key, Make make) {
    {
        const std::lock_guard lock(mutex_);
        if (const QImage* const image = images_.object(key)) return *image;
    }
    // Two threads may make the same image; that is rarer, and cheaper, than waiting for each other's files.
    QImage image = make();
    if (!image.isNull()) {
        const std::lock_guard lock(mutex_);
        images_.insert(key, new QImage(image), image.sizeInBytes());
    }
    return image;
}

}  // namespace orvane
