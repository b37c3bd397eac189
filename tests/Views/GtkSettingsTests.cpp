#include "Views/Desktop/Linux/GtkSettings.h"

#include <QtCore/QDir>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryDir>

#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

DesktopWishes dark() {
    return {ColorScheme::dark, {}, {}, {}};
}

TEST(GtkSettings, AreDarkByTheSettingOrByTheThemesName) {
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-application-prefer-dark-theme=1\n"), dark());
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-application-prefer-dark-theme = TRUE"), dark());
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\r\ngtk-theme-name=Adwaita-dark\r\n"), dark());
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-theme-name=Amber-Dark\n"), dark());
}

TEST(GtkSettings, NeverAskForTheLight) {
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-application-prefer-dark-theme=0\ngtk-theme-name=Adwaita"),
              DesktopWishes());
}

TEST(GtkSettings, SayWhetherAnythingMoves) {
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-enable-animations=0").reducesMotion, true);
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\ngtk-enable-animations=true").reducesMotion, false);
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\n").reducesMotion, std::nullopt);
}

TEST(GtkSettings, HaveHighContrastByTheThemesName) {
    EXPECT_EQ(wishesOfTheme("HighContrast"), (DesktopWishes{{}, {}, true, {}}));
    EXPECT_EQ(wishesOfTheme("HighContrastInverse"), (DesktopWishes{ColorScheme::dark, {}, true, {}}));
    EXPECT_EQ(wishesOfTheme("Adwaita"), DesktopWishes());
    EXPECT_EQ(wishesOfTheme(""), DesktopWishes());
}

TEST(GtkSettings, AreThoseOfTheirSectionOnly) {
    EXPECT_EQ(wishesOfGtkSettings("gtk-enable-animations=0\n[Other]\ngtk-enable-animations=0\n"),
              DesktopWishes());
    EXPECT_EQ(wishesOfGtkSettings("[Settings]\n#gtk-enable-animations=0\n=\n\xff\xfe\n"), DesktopWishes());
}

class GtkSettingsFilesTest : public ViewModelTest {
  protected:
    GtkSettingsFilesTest() { EXPECT_TRUE(QDir().mkpath(folder)); }

    /// As editors and as desktops save: another file takes the place of the old one.
    void save(const QString& version, const QByteArray& settings) const {
        EXPECT_TRUE(QDir().mkpath(folder + '/' + version));
        QSaveFile file(folder + '/' + version + "/settings.ini");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Settings]\n" + settings);
        ASSERT_TRUE(file.commit());
    }
    void writeInPlace(const QString& version, const QByteArray& settings) const {
        QFile file(folder + '/' + version + "/settings.ini");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Settings]\n" + settings);
    }

    const QTemporaryDir scratch;
    const QString folder = scratch.path() + "/config";
};

TEST_F(GtkSettingsFilesTest, PreferTheNewerVersionWishByWish) {
    save("gtk-3.0", "gtk-theme-name=Adwaita-dark\ngtk-enable-animations=0");
    save("gtk-4.0", "gtk-enable-animations=1");
    const GtkSettings settings(folder);
    EXPECT_EQ(settings.wishes(), (DesktopWishes{ColorScheme::dark, false, {}, {}}));
}

TEST_F(GtkSettingsFilesTest, AreFollowedFromTheirFolderOnAndHoweverTheyAreSaved) {
    const GtkSettings settings(folder);
    EXPECT_EQ(settings.wishes(), DesktopWishes());
    save("gtk-4.0", "gtk-application-prefer-dark-theme=1");
    waitUntil([&] { return settings.wishes() == dark(); });
    save("gtk-4.0", "gtk-application-prefer-dark-theme=0");
    waitUntil([&] { return settings.wishes() == DesktopWishes(); });
    writeInPlace("gtk-4.0", "gtk-theme-name=Adwaita-dark");
    waitUntil([&] { return settings.wishes() == dark(); });
    EXPECT_TRUE(QFile::remove(folder + "/gtk-4.0/settings.ini"));
    waitUntil([&] { return settings.wishes() == DesktopWishes(); });
}

}  // namespace
}  // namespace orvane::test
