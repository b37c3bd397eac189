#include "Programs/IconFiles/MacIconFile.h"

#include <QtCore/QBuffer>
#include <QtCore/QtEndian>
#include <array>
#include <cstdint>

namespace orvane {

namespace {

struct PNGElement {
    const char* type;
    int pixels;
};

/// Where two are of a size, one is for a screen with twice the pixels.
constexpr std::array pngElements{
    PNGElement{"ic11", 32},  PNGElement{"ic12", 64},  PNGElement{"ic07", 128}, PNGElement{"ic13", 256},
    PNGElement{"ic08", 256}, PNGElement{"ic14", 512}, PNGElement{"ic09", 512}, PNGElement{"ic10", 1024},
};

struct RunElement {
    const char* type;
    const char* maskType;
    int pixels;
};

/// The small ones for a plain screen: not everything on a Mac that shows icons reads PNG at these sizes.
constexpr std::array runElements{RunElement{"is32", "s8mk", 16}, RunElement{"il32", "l8mk", 32}};

constexpr qsizetype shortestRun = 3;
constexpr qsizetype longestRun = 130;
constexpr qsizetype runsBegin = 128;
constexpr qsizetype mostLiterals = 128;

QByteArray bigEndian(qsizetype value) {
    QByteArray bytes(sizeof(std::uint32_t), '\0');
    qToBigEndian(static_cast<std::uint32_t>(value), bytes.data());
    return bytes;
}

QByteArray element(const char* type, const QByteArray& contents) {
    constexpr qsizetype headerSize = 8;
    return type + bigEndian(contents.size() + headerSize) + contents;
}

qsizetype equalBytesAt(const QByteArray& bytes, qsizetype begin) {
    qsizetype end = begin;
    while (end < bytes.size() && end - begin < longestRun && bytes[end] == bytes[begin]) ++end;
    return end - begin;
}

/// Runs of equal bytes: 128 for one of three and so on, then the byte; between them literal ones, after their
/// number less one.
QByteArray inRuns(const QByteArray& bytes) {
    QByteArray runs;
    for (qsizetype at = 0; at < bytes.size();) {
        if (const auto equal = equalBytesAt(bytes, at); equal >= shortestRun) {
            runs += static_cast<char>(equal + runsBegin - shortestRun);
            runs += bytes[at];
            at += equal;
            continue;
        }
        const auto begin = at;
        do ++at;
        while (at < bytes.size() && at - begin < mostLiterals && equalBytesAt(bytes, at) < shortestRun);
        runs += static_cast<char>(at - begin - 1);
        runs += bytes.sliced(begin, at - begin);
    }
    return runs;
}

QByteArray channel(const QImage& image, int (*valueOf)(QRgb)) {
    QByteArray bytes;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) bytes += static_cast<char>(valueOf(image.pixel(x, y)));
    return bytes;
}

QByteArray png(const QImage& image) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? buffer.data() : QByteArray();
}

}  // namespace

QByteArray macIconFile(FunctionRef<QImage(int pixels)> drawn) {
    QByteArray elements;
    for (const auto& [type, maskType, pixels] : runElements) {
        const auto image = drawn(pixels).convertToFormat(QImage::Format_ARGB32);
        elements += element(type, inRuns(channel(image, qRed)) + inRuns(channel(image, qGreen)) +
                                      inRuns(channel(image, qBlue)));
        elements += element(maskType, channel(image, qAlpha));
    }
    for (const auto& [type, pixels] : pngElements) {
        const auto image = png(drawn(pixels));
        if (image.isEmpty()) return {};
        elements += element(type, image);
    }
    return element("icns", elements);
}

}  // namespace orvane
