#include "Views/Icons/IconProvider.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <asio/io_context.hpp>
#include <filesystem>
#include <memory>

#include "Platform/Posix/BundleLoader.h"
#include "Views/Icons/IconLoader.h"
#include "Views/Icons/IconSource.h"
#include "tests/Fixtures/FailingFileManager.h"
#include "tests/Views/IconFiles.h"
#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

class IconProviderTest : public ViewModelTest {
  protected:
    /// A bundle whose icon is this file.
    void makeBundle(const std::string& iconBytes) const {
        makeBundleWithoutIcon();
        mac.makeFile(iconPath, iconBytes);
    }
    void makeBundleWithoutIcon() const {
        mac.makeFile(bundlePath + "/Contents/Info.plist",
                     "<plist><dict><key>CFBundleIconFile</key><string>Foo</string></dict></plist>");
    }
    static QString idOf(const InstalledApplication& record) {
        return iconSource(record).mid(static_cast<int>(std::string_view("image://icons/").size()));
    }

    /// Does what has been asked of the provider.
    void runRequests() {
        work.run();
        work.restart();
    }
    QImage request(const QString& id, const QSize& size) {
        const std::unique_ptr<QQuickImageResponse> response(provider.requestImageResponse(id, size));
        int ends = 0;
        QObject::connect(response.get(), &QQuickImageResponse::finished, [&ends] { ++ends; });
        runRequests();
        EXPECT_EQ(ends, 1);
        const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
        return texture ? texture->image() : QImage();
    }
    QImage icon(int pixels) { return request(idOf(application("Foo")), QSize(pixels, pixels)); }
    bool isGeneric(const QImage& image) { return image == loader.genericIcon(image.width()); }

    const std::string bundlePath = bundleURL("Foo").path();
    const std::string iconPath = bundlePath + "/Contents/Resources/Foo.icns";
    const std::string redIcon = iconFile({{"icp5", png(32, Qt::red)}, {"ic07", png(128, Qt::blue)}});
    IconLoader loader{*bundleLoader, mac.files()};
    asio::io_context work;
    IconProvider provider{work.get_executor(), *bundleLoader, mac.files()};
};

TEST_F(IconProviderTest, ShowsTheBundlesIconAtTheSizeAskedFor) {
    makeBundle(redIcon);
    EXPECT_EQ(icon(32).size(), QSize(32, 32));
    EXPECT_EQ(icon(32).pixelColor(5, 5), QColor(Qt::red));
    EXPECT_EQ(icon(68).size(), QSize(68, 68));
    EXPECT_EQ(icon(68).pixelColor(5, 5), QColor(Qt::blue));
}

/// The bundles of a system that draws their icons itself.
class DrawnBundles : public BundleLoader {
  public:
    DrawnBundles(const BundleLoader& files, std::string drawn) : files_(files), drawn_(std::move(drawn)) {}

    std::optional<Bundle> bundle(const FileURL& url) const override { return files_.bundle(url); }
    std::optional<FileURL> iconFile(const FileURL& url) const override { return files_.iconFile(url); }
    std::optional<std::string> iconImage(const FileURL& /*url*/, int /*pixels*/) const override {
        return drawn_;
    }

  private:
    const BundleLoader& files_;
    const std::string drawn_;
};

TEST_F(IconProviderTest, ShowsTheIconThatTheSystemDraws) {
    makeBundle(redIcon);
    const auto iconWhereDrawn = [&](const std::string& drawn) {
        const DrawnBundles bundles(*bundleLoader, drawn);
        return IconLoader(bundles, mac.files()).icon(idOf(application("Foo")), 32);
    };
    EXPECT_EQ(iconWhereDrawn(png(32, Qt::green)).pixelColor(5, 5), QColor(Qt::green));
    EXPECT_EQ(iconWhereDrawn(png(64, Qt::green)).size(), QSize(32, 32));
    EXPECT_EQ(iconWhereDrawn("no picture").pixelColor(5, 5), QColor(Qt::red)) << "else the one of its file";
}

TEST_F(IconProviderTest, ShowsASensibleSizeWhenNoneIsAskedFor) {
    makeBundle(redIcon);
    EXPECT_EQ(request(idOf(application("Foo")), QSize()).size(), QSize(128, 128));
    EXPECT_EQ(request("generic", QSize(1 << 20, 0)).size(), QSize(1024, 1024));
}

TEST_F(IconProviderTest, DrawsTheGenericIcon) {
    const QImage generic = request("generic", QSize(68, 68));
    EXPECT_EQ(generic.size(), QSize(68, 68));
    EXPECT_EQ(generic.pixelColor(34, 12).alpha(), 255);
    EXPECT_EQ(generic.pixelColor(0, 0).alpha(), 0);
}

TEST_F(IconProviderTest, ShowsTheGenericIconForWhatItDoesNotKnow) {
    for (const char* id : {"", "nonsense", "bundle/%%%?0", "bundle/?0"})
        EXPECT_TRUE(isGeneric(request(id, QSize(32, 32)))) << id;
}

TEST_F(IconProviderTest, ShowsTheGenericIconForABundleWithoutOne) {
    EXPECT_TRUE(isGeneric(icon(32)));
    makeBundleWithoutIcon();
    EXPECT_TRUE(isGeneric(icon(32)));
}

TEST_F(IconProviderTest, ShowsTheGenericIconForFilesThatAreNone) {
    for (const std::string& bytes : {std::string(), std::string("not an icon"), redIcon.substr(0, 60),
                                     iconFile({{"ic09", "\xff\x4f\xff\x51 JPEG 2000"}})}) {
        makeBundle(bytes);
        EXPECT_TRUE(isGeneric(icon(32))) << bytes.size();
    }
}

TEST_F(IconProviderTest, NeverWaitsForAPipe) {
    makeBundleWithoutIcon();
    mac.makeDirectory(bundlePath + "/Contents/Resources");
    mac.makeFIFO(iconPath);
    EXPECT_TRUE(isGeneric(icon(32)));
}

TEST_F(IconProviderTest, ReadsNothingOutsideTheVolume) {
    const std::string outside = mac.makeOutsideFile("Foo.icns", redIcon);
    makeBundleWithoutIcon();
    mac.makeDirectory(bundlePath + "/Contents/Resources");
    mac.makeLink(iconPath, outside);
    EXPECT_TRUE(isGeneric(icon(32)));
}

TEST_F(IconProviderTest, ReadsNoFileOfExcessiveSize) {
    makeBundle(redIcon);
    std::filesystem::resize_file(mac.machinePath(iconPath), (std::uintmax_t{16} << 20) + 1);
    EXPECT_TRUE(isGeneric(icon(32)));
}

TEST_F(IconProviderTest, KeepsQuietAboutACarelessImage) {
    // A colour chunk behind the image data is something that the PNG library warns of.
    std::string careless = png(32, Qt::red);
    const std::string_view gamma("\0\0\0\4gAMA\0\0\xb1\x8f\x0b\xfc\x61\x05", 16);
    careless.insert(careless.size() - 12, gamma);
    makeBundle(iconFile({{"icp5", careless}}));
    static int messages = 0;
    const auto count = [](QtMsgType, const QMessageLogContext&, const QString&) { ++messages; };
    const QtMessageHandler former = qInstallMessageHandler(count);
    EXPECT_EQ(icon(32).pixelColor(5, 5), QColor(Qt::red));
    qInstallMessageHandler(former);
    EXPECT_EQ(messages, 0);
}

TEST_F(IconProviderTest, RemembersAnIconUntilItsFileChanges) {
    makeBundle(redIcon);
    const timespec monday[2] = {{1'700'000'000, 0}, {1'700'000'000, 0}};
    const timespec tuesday[2] = {{1'700'086'400, 0}, {1'700'086'400, 0}};
    const std::string file = mac.machinePath(iconPath);
    utimensat(AT_FDCWD, file.c_str(), monday, 0);
    EXPECT_EQ(icon(32).pixelColor(5, 5), QColor(Qt::red));
    mac.makeFile(iconPath, iconFile({{"icp5", png(32, Qt::green)}, {"ic07", png(128, Qt::blue)}}));
    utimensat(AT_FDCWD, file.c_str(), monday, 0);
    EXPECT_EQ(icon(32).pixelColor(5, 5), QColor(Qt::red)) << "read again";
    utimensat(AT_FDCWD, file.c_str(), tuesday, 0);
    EXPECT_EQ(icon(32).pixelColor(5, 5), QColor(Qt::green)) << "stale";
}

TEST_F(IconProviderTest, ReadsNothingForAnIconThatItRemembers) {
    makeBundle(redIcon);
    FailingFileManager files(mac.files());
    const auto bundles = makeBundleLoader(files);
    IconLoader counted(*bundles, files);
    const QString id = idOf(application("Foo"));
    const QImage first = counted.icon(id, 32);
    auto expected = files.calls();
    expected.emplace_back("resourceValues");
    EXPECT_EQ(counted.icon(id, 32), first);
    EXPECT_EQ(files.calls(), expected);
    EXPECT_NE(counted.icon(id, 64).size(), first.size());
}

TEST_F(IconProviderTest, GivesAnImageOnTheScreenItsIcon) {
    makeBundle(redIcon);
    QQmlEngine engine;
    engine.addImageProvider("icons", new IconProvider(pool.get_executor(), *bundleLoader, mac.files()));
    QQmlComponent component(&engine);
    component.setData("import QtQuick; Image { sourceSize { width: 34; height: 34 } }", QUrl());
    const std::unique_ptr<QObject> image(component.create());
    image->setProperty("source", iconSource(application("Foo")));
    waitUntil([&] { return image->property("progress") == 1.0; });
    EXPECT_EQ(image->property("implicitWidth").toInt(), 34);
    constexpr int ready = 1;
    EXPECT_EQ(image->property("status").toInt(), ready);
}

TEST_F(IconProviderTest, EndsARequestThatWasCancelledWithoutAnImage) {
    makeBundle(redIcon);
    const std::unique_ptr<QQuickImageResponse> response(
        provider.requestImageResponse(idOf(application("Foo")), QSize(32, 32)));
    int ends = 0;
    QObject::connect(response.get(), &QQuickImageResponse::finished, [&ends] { ++ends; });
    response->cancel();
    runRequests();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(response->textureFactory(), nullptr);
}

TEST_F(IconProviderTest, AnswersManyRequestsAtOnceOnThePool) {
    makeBundle(redIcon);
    IconProvider busy(pool.get_executor(), *bundleLoader, mac.files());
    std::vector<std::unique_ptr<QQuickImageResponse>> responses;
    for (int i = 0; i < 200; ++i)
        responses.emplace_back(
            busy.requestImageResponse(idOf(application("Foo")), QSize(16 + i % 50, 16 + i % 50)));
    pool.join();
    for (const auto& response : responses) {
        const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
        ASSERT_FALSE(texture->image().isNull());
        EXPECT_FALSE(isGeneric(texture->image()));
    }
}

}  // namespace
}  // namespace orvane::test
