#include "Views/Icons/IconFile.h"

#include <gtest/gtest.h>

#include <QtGui/QImageReader>
#include <random>

#include "tests/Views/IconFiles.h"

namespace orvane {
namespace {

using namespace std::string_literals;
using test::iconFile;
using test::png;

/// Runs as the Mac writes them: three equal bytes and more in one, the others literally.
std::string packed(const std::string& bytes) {
    std::string runs;
    for (std::size_t i = 0; i < bytes.size();) {
        std::size_t same = 1;
        while (same < 130 && i + same < bytes.size() && bytes[i + same] == bytes[i]) ++same;
        if (same >= 3) {
            runs += static_cast<char>(same + 125);
            runs += bytes[i];
            i += same;
        } else {
            runs += '\0';
            runs += bytes[i++];
        }
    }
    return runs;
}

/// One channel of a square whose pixels differ from each other, with some that do not.
std::string channel(int side, int seed) {
    std::string bytes;
    for (int i = 0; i < side * side; ++i)
        bytes += static_cast<char>((i / side % 3 == 0 ? seed : seed + i * 7) & 0xff);
    return bytes;
}

QRgb at(const std::string& a, const std::string& r, const std::string& g, const std::string& b, int i) {
    const auto byte = [i](const std::string& bytes) {
        return static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
    };
    return qRgba(byte(r), byte(g), byte(b), byte(a));
}

QImage premultiplied(QImage image) {
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return image;
}

QImage expectedImage(int side, const std::string& a, const std::string& r, const std::string& g,
                     const std::string& b) {
    QImage image(side, side, QImage::Format_ARGB32);
    for (int i = 0; i < side * side; ++i) image.setPixel(i % side, i / side, at(a, r, g, b, i));
    return premultiplied(image);
}

std::string usualFile() {
    return iconFile({{"TOC ", "whatever"},
                     {"icp4", png(16, Qt::red)},
                     {"ic07", png(128, Qt::green)},
                     {"icp5", png(32, Qt::blue)},
                     {"ic08", png(256, Qt::yellow)}});
}

TEST(IconFile, TakesTheSmallestImageThatIsLargeEnough) {
    EXPECT_EQ(imageFromIconFile(usualFile(), 16).pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(imageFromIconFile(usualFile(), 17).pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(imageFromIconFile(usualFile(), 32).pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(imageFromIconFile(usualFile(), 76).pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(imageFromIconFile(usualFile(), 152).pixelColor(0, 0), QColor(Qt::yellow));
}

TEST(IconFile, ScalesDownToTheSizeWanted) {
    EXPECT_EQ(imageFromIconFile(usualFile(), 76).size(), QSize(76, 76));
    EXPECT_EQ(imageFromIconFile(usualFile(), 128).size(), QSize(128, 128));
}

TEST(IconFile, TakesTheLargestImageAsItIsWhenNoneIsLargeEnough) {
    const QImage image = imageFromIconFile(usualFile(), 1000);
    EXPECT_EQ(image.size(), QSize(256, 256));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::yellow));
}

TEST(IconFile, KeepsTheProportionsOfAnOblongImage) {
    QImage oblong(64, 32, QImage::Format_ARGB32);
    oblong.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    oblong.save(&buffer, "PNG");
    EXPECT_EQ(imageFromIconFile(iconFile({{"ic07", buffer.data().toStdString()}}), 32).size(), QSize(32, 16));
}

TEST(IconFile, GoesByTheImageAndNotByItsType) {
    const std::string mislabelled = iconFile({{"icp4", png(64, Qt::blue)}, {"ic10", png(8, Qt::red)}});
    EXPECT_EQ(imageFromIconFile(mislabelled, 16).pixelColor(0, 0), QColor(Qt::blue));
}

TEST(IconFile, ReadsColorsInRunsWithTheirMask) {
    const std::string a = channel(16, 3), r = channel(16, 100), g = channel(16, 50), b = channel(16, 9);
    const std::string file = iconFile({{"is32", packed(r) + packed(g) + packed(b)}, {"s8mk", a}});
    EXPECT_EQ(imageFromIconFile(file, 16), expectedImage(16, a, r, g, b));
}

TEST(IconFile, ReadsTheLargeRunsBehindTheirFourZeros) {
    const std::string a = channel(128, 255), r = channel(128, 1), g = channel(128, 2), b = channel(128, 3);
    const std::string file =
        iconFile({{"t8mk", a}, {"it32", "\0\0\0\0"s + packed(r) + packed(g) + packed(b)}});
    EXPECT_EQ(imageFromIconFile(file, 128), expectedImage(128, a, r, g, b));
}

TEST(IconFile, ReadsRunsThatCrossFromOneChannelIntoTheNext) {
    const std::string flat(256, '\x40');
    const std::string file = iconFile({{"is32", packed(flat + flat + flat)}});
    EXPECT_EQ(imageFromIconFile(file, 16).pixelColor(15, 15), QColor(0x40, 0x40, 0x40));
}

TEST(IconFile, ShowsRunsWithoutAWholeMaskOpaque) {
    const std::string flat(256, '\x40');
    const std::string file = iconFile({{"is32", packed(flat + flat + flat)}, {"s8mk", "short"}});
    EXPECT_EQ(imageFromIconFile(file, 16).pixelColor(3, 3).alpha(), 255);
}

TEST(IconFile, ReadsAllFourChannelsInRuns) {
    const std::string a = channel(32, 200), r = channel(32, 10), g = channel(32, 20), b = channel(32, 30);
    const std::string file = iconFile({{"ic05", "ARGB" + packed(a) + packed(r) + packed(g) + packed(b)}});
    EXPECT_EQ(imageFromIconFile(file, 32), expectedImage(32, a, r, g, b));
}

TEST(IconFile, AgreesWithQtsOwnReader) {
    if (!QImageReader::supportedImageFormats().contains("icns")) GTEST_SKIP() << "Qt's icns plugin is absent";
    // A mask that hides nothing: the two round colours under a translucent one differently.
    const std::string a(1024, '\xff'), r = channel(32, 10), g = channel(32, 20), b = channel(32, 30);
    std::string file = iconFile({{"il32", packed(r) + packed(g) + packed(b)}, {"l8mk", a}});
    EXPECT_EQ(imageFromIconFile(file, 32),
              premultiplied(QImage::fromData(QByteArray::fromStdString(file), "icns")));
}

TEST(IconFile, PassesOverImagesThatCannotBeRead) {
    const std::string broken = png(32, Qt::blue).substr(0, 40);
    const std::string jpeg2000("\0\0\0\x0cjP  \r\n\x87\n", 12);
    const std::string file = iconFile({{"ic11", broken}, {"ic09", jpeg2000}, {"icp4", png(16, Qt::red)}});
    EXPECT_EQ(imageFromIconFile(file, 32).pixelColor(0, 0), QColor(Qt::red));
}

TEST(IconFile, IsNullWithoutAnImage) {
    const std::string whole = png(16, Qt::red);
    for (const std::string& bytes :
         {""s, "icns"s, "icns\0\0\0\x08"s, whole, iconFile({}), iconFile({{"icp4", ""}}),
          iconFile({{"icp4", "\x89PNG\r\n\x1a\n"}}), iconFile({{"is32", ""}}), iconFile({{"ic04", "ARGB"}}),
          iconFile({{"it32", "\0\0\0\0"s}}), iconFile({{"name", "text"}})})
        EXPECT_TRUE(imageFromIconFile(bytes, 32).isNull()) << bytes.size();
}

TEST(IconFile, StopsAtAnElementThatIsNotWhole) {
    const std::string sound = iconFile({{"icp4", png(16, Qt::red)}});
    const std::string image = png(32, Qt::blue);
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{7}, image.size() + 9, std::size_t{0xffffffff}})
        EXPECT_EQ(imageFromIconFile(sound + "icp5" + test::bigEndian(length) + image, 32).size(),
                  QSize(16, 16));
}

TEST(IconFile, RefusesAnImageThatClaimsToBeHuge) {
    std::string huge = png(16, Qt::red);
    huge.replace(16, 8, test::bigEndian(60'000) + test::bigEndian(60'000));
    EXPECT_TRUE(imageFromIconFile(iconFile({{"ic10", huge}}), 32).isNull());
    std::string none = png(16, Qt::red);
    none.replace(16, 8, std::string(8, '\0'));
    EXPECT_TRUE(imageFromIconFile(iconFile({{"ic10", none}}), 32).isNull());
}

TEST(IconFile, GivesUpOnAFileOfBrokenImages) {
    test::IconElements elements(20'000, {"icp5", png(32, Qt::blue).substr(0, 60)});
    elements.emplace_back("icp4", png(16, Qt::red));
    EXPECT_TRUE(imageFromIconFile(iconFile(elements), 32).isNull());
}

TEST(IconFile, SurvivesDamageOfAnyKind) {
    const std::string a = channel(16, 3);
    const std::string sound = iconFile({{"is32", packed(a + a + a)},
                                        {"s8mk", a},
                                        {"ic04", "ARGB" + packed(a + a + a + a)},
                                        {"icp5", png(32, Qt::blue)},
                                        {"ic07", png(48, Qt::green)}});
    std::mt19937 random(3);
    for (int round = 0; round < 6000; ++round) {
        std::string bytes = sound;
        for (auto edits = random() % 6; edits > 0; --edits)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        if (random() % 3 == 0) bytes.resize(random() % bytes.size());
        const int pixels = 1 + static_cast<int>(random() % 64);
        const QImage image = imageFromIconFile(bytes, pixels);
        ASSERT_LE(image.width(), 2048);
    }
}

}  // namespace
}  // namespace orvane
