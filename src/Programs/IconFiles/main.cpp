#include <QtCore/QDir>
#include <QtCore/QSaveFile>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <cstdio>

#include "Programs/IconFiles/MacIconFile.h"

namespace {

/// Whether a whole file could be written.
bool write(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    return !bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           file.commit();
}

int fail(const QString& path, const char* why) {
    std::fprintf(stderr, "orvane-icon-files: %s %s\n", path.toLocal8Bit().constData(), why);
    return 1;
}

}  // namespace

/// Draws a picture in the sizes that desktops want: `orvane-icon-files PICTURE FOLDER NAME SIZE...` writes
/// FOLDER/SIZExSIZE/apps/NAME.png, `orvane-icon-files PICTURE FILE` a Mac's icon file. Used while building;
/// it ends with 1 where a picture cannot be made.
int main(int argc, char** argv) {
    if (argc < 3 || argc == 4) {
        std::fputs("orvane-icon-files: PICTURE FILE, or PICTURE FOLDER NAME SIZE...\n", stderr);
        return 2;
    }
    const auto argument = [&](int i) { return QString::fromLocal8Bit(argv[i]); };
    QSvgRenderer picture(argument(1));
    if (!picture.isValid()) return fail(argument(1), "is no picture");
    const auto drawn = [&](int pixels) {
        QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            picture.render(&painter);
        }
        return image;
    };
    if (argc == 3) {
        return write(argument(2), orvane::macIconFile(drawn)) ? 0 : fail(argument(2), "cannot be written");
    }
    for (int i = 4; i < argc; ++i) {
        const int size = argument(i).toInt();
        const auto folder = QStringLiteral("%1/%2x%2/apps").arg(argument(2)).arg(size);
        const auto file = QStringLiteral("%1/%2.png").arg(folder, argument(3));
        if (!QDir().mkpath(folder) || !drawn(size).save(file)) return fail(file, "cannot be written");
    }
    return 0;
}
