#include "Views/Icons/IconFile.h"

#include <QtCore/QByteArrayView>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace orvane {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t headerSize = 8;
constexpr int largestSide = 2048;
/// A sound file has about ten images; of a file that has thousands of broken ones not all are tried.
constexpr std::size_t attempts = 12;

/// The two forms without a container of their own: colours in runs with the mask in another element, and all
/// four channels in runs.
struct RunForm {
    std::string_view type;
    int side;
    /// The element with the mask; none for the form that holds its own.
    std::string_view maskType;
    std::string_view prefix;
};

constexpr std::array runForms{
    RunForm{"is32", 16, "s8mk", ""}, RunForm{"il32", 32, "l8mk", ""},
    RunForm{"ih32", 48, "h8mk", ""}, RunForm{"it32", 128, "t8mk", "\0\0\0\0"sv},
    RunForm{"ic04", 16, "", "ARGB"}, RunForm{"icsb", 18, "", "ARGB"},
    RunForm{"ic05", 32, "", "ARGB"}, RunForm{"icsB", 36, "", "ARGB"},
};

// The run-length forms are square images, one channel after the other. Null for bytes that do not fill every
// channel.

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

/// Red, green and blue in runs. The mask has one byte of alpha per pixel; without a whole one the image is
/// opaque.
QImage imageFromRGBRuns(std::string_view runs, std::string_view mask, int side) {
    const std::size_t count = pixelCount(side);
    const std::string colors = unpacked(runs, 3 * count);
    if (colors.empty()) return {};
    return assembled({mask.size() < count ? std::string_view() : mask, colors, count}, side);
}

/// Alpha, red, green and blue in runs.
QImage imageFromARGBRuns(std::string_view runs, int side) {
    const std::size_t count = pixelCount(side);
    const std::string bytes = unpacked(runs, 4 * count);
    if (bytes.empty()) return {};
    return assembled({std::string_view(bytes).substr(0, count), std::string_view(bytes).substr(count), count},
                     side);
}

struct Element {
    std::string_view type;
    std::string_view payload;
};

struct Candidate {
    int side = 0;
    std::string_view payload;
    /// Null for PNG.
    const RunForm* form = nullptr;
};

std::uint32_t bigEndian(std::string_view bytes) {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(0, 4)) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

/// The elements up to the first that is not whole.
std::vector<Element> elementsOf(std::string_view bytes) {
    std::vector<Element> elements;
    if (bytes.size() < headerSize || !bytes.starts_with("icns")) return elements;
    bytes.remove_prefix(headerSize);
    while (bytes.size() >= headerSize) {
        const std::size_t length = bigEndian(bytes.substr(4));
        if (length < headerSize || length > bytes.size()) break;
        elements.push_back({bytes.substr(0, 4), bytes.substr(headerSize, length - headerSize)});
        bytes.remove_prefix(length);
    }
    return elements;
}

/// The larger side of a PNG image, from its first chunk; absent for anything else and beyond bounds.
std::optional<int> sideOfPNG(std::string_view bytes) {
    constexpr auto signature = "\x89PNG\r\n\x1a\n"sv;
    constexpr std::size_t sizeOffset = 16;
    if (!bytes.starts_with(signature) || bytes.size() < sizeOffset + 8) return std::nullopt;
    const std::uint32_t side =
        std::max(bigEndian(bytes.substr(sizeOffset)), bigEndian(bytes.substr(sizeOffset + 4)));
    if (side < 1 || side > largestSide) return std::nullopt;
    return static_cast<int>(side);
}

std::vector<Candidate> candidatesIn(const std::vector<Element>& elements) {
    std::vector<Candidate> candidates;
    for (const Element& element : elements) {
        if (const auto side = sideOfPNG(element.payload)) {
            candidates.push_back({*side, element.payload, nullptr});
            continue;
        }
        const auto form = std::ranges::find(runForms, element.type, &RunForm::type);
        if (form != runForms.end() && element.payload.starts_with(form->prefix))
            candidates.push_back({form->side, element.payload, &*form});
    }
    return candidates;
}

QImage decode(const Candidate& candidate, const std::vector<Element>& elements) {
    if (!candidate.form)
        return QImage::fromData(
            QByteArrayView(candidate.payload.data(), static_cast<qsizetype>(candidate.payload.size())),
            "PNG");
    const RunForm& form = *candidate.form;
    const std::string_view runs = candidate.payload.substr(form.prefix.size());
    if (form.maskType.empty()) return imageFromARGBRuns(runs, form.side);
    const auto mask = std::ranges::find(elements, form.maskType, &Element::type);
    return imageFromRGBRuns(runs, mask == elements.end() ? ""sv : mask->payload, form.side);
}

/// The best first: large enough and small, then the largest of the rest; of one size PNG.
void sortByFitness(std::vector<Candidate>& candidates, int pixels) {
    const auto fitness = [pixels](const Candidate& candidate) {
        const bool isTooSmall = candidate.side < pixels;
        return std::tuple(isTooSmall, isTooSmall ? -candidate.side : candidate.side,
                          candidate.form != nullptr);
    };
    std::ranges::stable_sort(candidates, {}, fitness);
}

}  // namespace

QImage imageFromIconFile(std::string_view bytes, int pixels) {
    const std::vector<Element> elements = elementsOf(bytes);
    std::vector<Candidate> candidates = candidatesIn(elements);
    sortByFitness(candidates, pixels);
    for (const Candidate& candidate : std::span(candidates).first(std::min(attempts, candidates.size()))) {
        QImage image = decode(candidate, elements);
        if (image.isNull()) continue;
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
        if (candidate.side <= pixels) return image;
        return image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    return {};
}

}  // namespace orvane
