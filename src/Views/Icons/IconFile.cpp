#include "Views/Icons/IconFile.h"

#include <QtCore/QByteArrayView>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <tuple>
#include <vector>

#include "Views/Icons/IconRuns.h"

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
