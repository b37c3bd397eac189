#include "Views/Icons/IconRuns.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace orvane {
namespace {

/// Undoes the runs: a byte below 128 is followed by one more literal bytes than it says, one from 128 on by a
/// byte that stands 125 times less than it says. Empty unless they fill the size.
std::string unpacked(std::string_view runs, std::size_t size) {
    std::string bytes;
    bytes.reserve(size);
    while (bytes.size() < size && runs.size() > 1) {
        const auto control = static_cast<unsigned char>(runs[0]);
        runs.remove_prefix(1);
        const std::size_t room = size - bytes.size();
        if (control < 128) {
            const std::size_t count = std::min<std::size_t>({control + 1U, room, runs.size()});
            bytes.append(runs.substr(0, count));
            runs.remove_prefix(count);
        } else {
            bytes.append(std::min<std::size_t>(control - 125U, room), runs[0]);
            runs.remove_prefix(1);
        }
    }
    return bytes.size() == size ? bytes : std::string();
}

/// The channels of one image, each of `count` bytes.
struct Channels {
    std::string_view alpha;
    std::string_view colors;
    std::size_t count;

    QRgb pixel(std::size_t i) const {
        const auto byte = [](char c) { return static_cast<int>(static_cast<unsigned char>(c)); };
        return qRgba(byte(colors[i]), byte(colors[i + count]), byte(colors[i + 2 * count]),
                     alpha.empty() ? 255 : byte(alpha[i]));
    }
};

QImage assembled(const Channels& channels, int side) {
    QImage image(side, side, QImage::Format_ARGB32);
    std::size_t i = 0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) image.setPixel(x, y, channels.pixel(i++));
    return image;
}

std::size_t pixelCount(int side) {
    return static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
}

}  // namespace

QImage imageFromRGBRuns(std::string_view runs, std::string_view mask, int side) {
    const std::size_t count = pixelCount(side);
    const std::string colors = unpacked(runs, 3 * count);
    if (colors.empty()) return {};
    return assembled({mask.size() < count ? std::string_view() : mask, colors, count}, side);
}

QImage imageFromARGBRuns(std::string_view runs, int side) {
    const std::size_t count = pixelCount(side);
    const std::string bytes = unpacked(runs, 4 * count);
    if (bytes.empty()) return {};
    return assembled({std::string_view(bytes).substr(0, count), std::string_view(bytes).substr(count), count},
                     side);
}

}  // namespace orvane
