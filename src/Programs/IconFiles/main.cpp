#include <QtCore/QDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <cstdio>

/// Draws a picture in the sizes that desktops want: `orvane-icon-files PICTURE FOLDER NAME SIZE...` writes
/// FOLDER/SIZExSIZE/apps/NAME.png. Used while building; it ends with 1 where a picture cannot be made.
int main(int argc, char** argv) {
    if (argc < 5) {
        std::fputs("orvane-icon-files: PICTURE FOLDER NAME SIZE...\n", stderr);
        return 2;
    }
    QSvgRenderer picture(QString::fromLocal8Bit(argv[1]));
    if (!picture.isValid()) {
        std::fprintf(stderr, "orvane-icon-files: %s is no picture\n", argv[1]);
        return 1;
    }
    for (int i = 4; i < argc; ++i) {
        const int size = QByteArray(argv[i]).toInt();
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            picture.render(&painter);
        }
        const auto folder = QStringLiteral("%1/%2x%2/apps").arg(QString::fromLocal8Bit(argv[2])).arg(size);
        const auto file =
            folder + QLatin1Char('/') + QString::fromLocal8Bit(argv[3]) + QStringLiteral(".png");
        if (!QDir().mkpath(folder) || !image.save(file)) {
            std::fprintf(stderr, "orvane-icon-files: %s cannot be written\n", file.toLocal8Bit().constData());
            return 1;
        }
    }
    return 0;
}
