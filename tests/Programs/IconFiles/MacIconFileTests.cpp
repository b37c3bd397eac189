#include "Programs/IconFiles/MacIconFile.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "Views/Icons/IconFile.h"

namespace orvane {
namespace {

/// Rows with no two equal pixels beside each other, and rows with many; opaque ones, and others.
constexpr auto pattern = [](int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    for (int y = 0; y < pixels; ++y) {
        for (int x = 0; x < pixels; ++x) {
            const int alpha = y % 4 == 0 ? 255 : x * 255 / pixels;
            image.setPixel(x, y,
                           y / 8 % 2 == 0 ? qRgba(x * 7 % 256, y * 5 % 256, pixels % 251, alpha)
                                          : qRgba(200, x / 3 % 256, x / 2 % 256, alpha));
        }
    }
    return image;
};

QImage premultiplied(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

std::string_view bytesOf(const QByteArray& file) {
    return {file.constData(), static_cast<std::size_t>(file.size())};
}

/// The element of a type, as a file of its own.
std::string alone(std::string_view file, const std::vector<std::string_view>& types) {
    std::string elements;
    for (std::size_t at = 8; at + 8 <= file.size();) {
        std::size_t length = 0;
        for (std::size_t i = 4; i < 8; ++i) length = length << 8 | static_cast<unsigned char>(file[at + i]);
        for (const auto type : types)
            if (file.substr(at, 4) == type) elements += file.substr(at, length);
        at += length;
    }
    std::string whole = "icns";
    for (int shift = 24; shift >= 0; shift -= 8) whole += static_cast<char>((elements.size() + 8) >> shift);
    return whole + elements;
}

TEST(MacIconFile, EveryElementHoldsThePictureOfItsSize) {
    struct Size {
        std::vector<std::string_view> types;
        int pixels;
    };
    const std::vector<Size> sizes{
        {{"is32", "s8mk"}, 16}, {{"il32", "l8mk"}, 32}, {{"ic11"}, 32},  {{"ic12"}, 64},  {{"ic07"}, 128},
        {{"ic13"}, 256},        {{"ic08"}, 256},        {{"ic14"}, 512}, {{"ic09"}, 512}, {{"ic10"}, 1024}};
    const auto file = macIconFile(pattern);
    std::size_t elements = 8;
    for (const auto& [types, pixels] : sizes) {
        const auto one = alone(bytesOf(file), types);
        elements += one.size() - 8;
        EXPECT_EQ(imageFromIconFile(one, pixels), premultiplied(pattern(pixels))) << types.front();
    }
    EXPECT_EQ(elements, bytesOf(file).size()) << "there is nothing else in it";
}

TEST(MacIconFile, SaysHowLongItIs) {
    const auto file = macIconFile(pattern);
    ASSERT_GT(file.size(), 8);
    EXPECT_EQ(alone(bytesOf(file), {"is32", "s8mk", "il32", "l8mk", "ic11", "ic12", "ic07", "ic13", "ic08",
                                    "ic14", "ic09", "ic10"}),
              bytesOf(file));
}

TEST(MacIconFile, IsEmptyWithoutAPicture) {
    EXPECT_TRUE(macIconFile([](int) { return QImage(); }).isEmpty());
}

}  // namespace
}  // namespace orvane
