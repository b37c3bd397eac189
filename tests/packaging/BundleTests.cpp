#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <asio/thread_pool.hpp>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "Formats/PropertyList.h"
#include "Services/ApplicationScanner.h"
#include "Views/Icons/IconLoader.h"
#include "Views/Icons/IconSource.h"
#include "tests/Fixtures/ApplicationVolume.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// Orvane's own bundle, as it is laid out, in a Mac's folder of applications.
class BundleTest : public testing::Test {
  protected:
    BundleTest() {
        volume.makeDirectory("/Applications");
        fs::copy(binaryDirectory() + "/Orvane.app", volume.machinePath(path), fs::copy_options::recursive);
    }

    InstalledApplication scanned() {
        const auto applications = mainLoop.run(scanner.scan());
        EXPECT_EQ(applications.size(), 1U);
        return applications.empty() ? InstalledApplication() : applications.front();
    }

    const std::string path = "/Applications/Orvane.app";
    const ApplicationVolume volume;
    MainLoop mainLoop;
    asio::thread_pool pool{2};
    ApplicationScanner scanner{pool.get_executor(), volume.files(), volume.bundleLoader(),
                               volume.localizedText()};
};

TEST_F(BundleTest, TheScannerListsItAsWhatItIs) {
    const auto application = scanned();
    EXPECT_EQ(application.id(), path);
    EXPECT_EQ(application.name, "Orvane");
    EXPECT_EQ(application.bundleIdentifier, "org.example.orvane");
    EXPECT_EQ(application.version, ORVANE_VERSION);
    EXPECT_FALSE(application.isSystemApplication);
    EXPECT_GT(application.size, 100'000);
}

TEST_F(BundleTest, TheCommandLineListsItAsWhatItIs) {
    const auto result =
        runProgram({binaryDirectory() + "/orvane-cli", "--root", volume.machinePath(""), "list", "--json"});
    ASSERT_EQ(result.status, 0) << result.error;
    const auto applications = nlohmann::json::parse(result.output);
    ASSERT_EQ(applications.size(), 1U);
    EXPECT_EQ(applications[0]["name"], "Orvane");
    EXPECT_EQ(applications[0]["bundleIdentifier"], "org.example.orvane");
    EXPECT_EQ(applications[0]["version"], ORVANE_VERSION);
}

/// The largest difference of any channel of any pixel, from 0 to 255.
int difference(const QImage& one, const QImage& other) {
    int largest = one.size() == other.size() ? 0 : 255;
    for (int y = 0; y < one.height() && largest < 255; ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
        }
    }
    return largest;
}

TEST_F(BundleTest, ItsIconIsTheProgramsDrawing) {
    QSvgRenderer drawing(QStringLiteral(":/qt/qml/Orvane/Icons/orvane.svg"));
    ASSERT_TRUE(drawing.isValid());
    IconLoader loader(volume.bundleLoader(), volume.files());
    const auto id = iconSource(scanned()).mid(QStringLiteral("image://icons/").size());
    for (const int pixels : {16, 32, 64, 128, 256, 512, 1024}) {
        QImage expected(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        expected.fill(Qt::transparent);
        {
            QPainter painter(&expected);
            drawing.render(&painter);
        }
        // Where little of a pixel is covered, its colour is rounded on the way through a file.
        EXPECT_LE(difference(loader.icon(id, pixels).convertToFormat(QImage::Format_ARGB32_Premultiplied),
                             expected),
                  1)
            << pixels;
    }
}

TEST_F(BundleTest, WhatItsInformationNamesIsThere) {
    std::optional<std::string> executable;
    std::optional<std::string> icon;
    std::optional<std::string> type;
    const auto information =
        volume.files().contents(TestVolume::url(path + "/Contents/Info.plist"), PropertyListLimits::bytes);
    ASSERT_TRUE(information);
    readPropertyListTexts(
        *information,
        {{"CFBundleExecutable", executable}, {"CFBundleIconFile", icon}, {"CFBundlePackageType", type}});
    ASSERT_TRUE(executable && icon);
    EXPECT_EQ(type, "APPL");
    EXPECT_TRUE(volume.contains(path + "/Contents/Resources/" + *icon));
    for (const auto& program : {*executable, std::string("orvane-cli")}) {
        const auto file = volume.machinePath(path + "/Contents/MacOS/" + program);
        EXPECT_EQ(runProgram({file, "--version"}).status, 0) << program;
    }
}

}  // namespace
}  // namespace orvane::test
