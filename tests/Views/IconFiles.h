#pragma once

#include <QtCore/QBuffer>
#include <QtGui/QImage>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// A square of one colour as PNG.
inline std::string png(int side, const QColor& color) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data().toStdString();
}

inline std::string bigEndian(std::size_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

using IconElements = std::vector<std::pair<std::string, std::string>>;

/// An icon file of elements: each a type of four characters, and its contents.
inline std::string iconFile(const IconElements& elements) {
    std::string body;
    for (const auto& [type, contents] : elements) body += type + bigEndian(contents.size() + 8) + contents;
    return "icns" + bigEndian(body.size() + 8) + body;
}

}  // namespace orvane::test
