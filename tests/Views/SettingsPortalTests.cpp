#include "Views/Desktop/Linux/SettingsPortal.h"

#include <QtCore/QTemporaryDir>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

#include "Views/Desktop/FollowDesktop.h"
#include "tests/Views/ControlTest.h"
#include "tests/Views/StandInPortal.h"

namespace orvane::test {
namespace {

const QString appearanceSettings = "org.freedesktop.appearance";
const QString gnomeSettings = "org.gnome.desktop.interface";
const QString accessibilitySettings = "org.gnome.desktop.a11y.interface";

DesktopWishes wishesOf(const QString& settings, const QString& key, const QVariant& value) {
    return wishesOfPortal({{settings, {{key, value}}}});
}

DesktopWishes scheme(ColorScheme scheme) {
    return {scheme, {}, {}, {}};
}

TEST(PortalSettings, TellTheColourSchemeOrLeaveItOpen) {
    EXPECT_EQ(wishesOf(appearanceSettings, "color-scheme", 1U), scheme(ColorScheme::dark));
    EXPECT_EQ(wishesOf(appearanceSettings, "color-scheme", 2U), scheme(ColorScheme::light));
    EXPECT_EQ(wishesOf(appearanceSettings, "color-scheme", 0U), DesktopWishes());
    EXPECT_EQ(wishesOf(appearanceSettings, "color-scheme", 7U), DesktopWishes());
    EXPECT_EQ(wishesOf(gnomeSettings, "color-scheme", "prefer-dark"), scheme(ColorScheme::dark));
    EXPECT_EQ(wishesOf(gnomeSettings, "color-scheme", "prefer-light"), scheme(ColorScheme::light));
    EXPECT_EQ(wishesOf(gnomeSettings, "color-scheme", "default"), DesktopWishes());
    EXPECT_EQ(wishesOf(gnomeSettings, "gtk-theme", "Adwaita-dark"), scheme(ColorScheme::dark));
}

TEST(PortalSettings, AreHeardInOneOrder) {
    EXPECT_EQ(wishesOfPortal({{appearanceSettings, {{"color-scheme", 2U}}},
                              {gnomeSettings, {{"color-scheme", "prefer-dark"}}}}),
              scheme(ColorScheme::light));
    EXPECT_EQ(
        wishesOfPortal({{gnomeSettings, {{"color-scheme", "prefer-light"}, {"gtk-theme", "Adwaita-dark"}}}}),
        scheme(ColorScheme::light));
}

TEST(PortalSettings, TellOfMotionContrastAndText) {
    EXPECT_EQ(wishesOf(gnomeSettings, "enable-animations", false).reducesMotion, true);
    EXPECT_EQ(wishesOf(gnomeSettings, "enable-animations", true).reducesMotion, false);
    EXPECT_EQ(wishesOf(appearanceSettings, "reduced-motion", 1U).reducesMotion, true);
    EXPECT_EQ(wishesOf(appearanceSettings, "contrast", 1U).hasHighContrast, true);
    EXPECT_EQ(wishesOf(appearanceSettings, "contrast", 0U).hasHighContrast, std::nullopt);
    EXPECT_EQ(wishesOf(accessibilitySettings, "high-contrast", true).hasHighContrast, true);
    EXPECT_EQ(wishesOf(gnomeSettings, "gtk-theme", "HighContrast").hasHighContrast, true);
    EXPECT_EQ(wishesOf(gnomeSettings, "text-scaling-factor", 1.25).textScale, 1.25);
    EXPECT_EQ(wishesOf(gnomeSettings, "text-scaling-factor", 0.0).textScale, std::nullopt);
}

TEST(PortalSettings, OfAnotherKindSayNothing) {
    EXPECT_EQ(wishesOfPortal({{appearanceSettings,
                               {{"color-scheme", "purple"}, {"contrast", QVariantList()}, {"x", {}}}},
                              {gnomeSettings, {{"text-scaling-factor", "large"}, {"gtk-theme", 3}}}}),
              DesktopWishes());
}

class SettingsPortalTest : public ControlTest {
  protected:
    void waitForWishes(const SettingsPortal& portal, const DesktopWishes& wishes) {
        waitUntil([&] { return portal.wishes() == wishes; });
    }

    const MessageBus bus;
    StandInPortal desktopsPortal{bus.address()};
};

TEST_F(SettingsPortalTest, IsAskedAndFollowed) {
    desktopsPortal.set(appearanceSettings, "color-scheme", 1U);
    desktopsPortal.come();
    const SettingsPortal portal(bus.address());
    EXPECT_EQ(portal.wishes(), DesktopWishes()) << "it would have waited";
    waitForWishes(portal, scheme(ColorScheme::dark));
    desktopsPortal.set(appearanceSettings, "color-scheme", 2U);
    waitForWishes(portal, scheme(ColorScheme::light));
    desktopsPortal.set(gnomeSettings, "enable-animations", false);
    waitForWishes(portal, {ColorScheme::light, true, {}, {}});
}

TEST_F(SettingsPortalTest, IsHeardWhenItComesLaterAndHoldsWhenItGoes) {
    desktopsPortal.set(appearanceSettings, "color-scheme", 1U);
    const SettingsPortal portal(bus.address());
    // The first question goes to nobody; a second one says that it has been answered.
    desktopsPortal.come();
    waitForWishes(portal, scheme(ColorScheme::dark));
    desktopsPortal.go();
    desktopsPortal.set(appearanceSettings, "color-scheme", 2U);
    desktopsPortal.set(appearanceSettings, "contrast", 1U);
    desktopsPortal.come();
    waitForWishes(portal, {ColorScheme::light, {}, true, {}});
}

TEST_F(SettingsPortalTest, IsAskedAndNotBelievedWhenSomebodyTellsOfAChange) {
    desktopsPortal.set(appearanceSettings, "color-scheme", 2U);
    desktopsPortal.come();
    const SettingsPortal portal(bus.address());
    waitForWishes(portal, scheme(ColorScheme::light));
    const int before = desktopsPortal.questions();
    StandInPortal(bus.address()).lie(appearanceSettings, "color-scheme", 1U);
    waitUntil([&] { return desktopsPortal.questions() > before; });
    desktopsPortal.set(appearanceSettings, "contrast", 1U);
    waitForWishes(portal, {ColorScheme::light, {}, true, {}});
}

TEST_F(SettingsPortalTest, ThatAnswersNonsenseSaysNothing) {
    desktopsPortal.answerNonsense();
    desktopsPortal.come();
    const SettingsPortal portal(bus.address());
    waitUntil([this] { return desktopsPortal.questions() > 0; });
    const QSignalSpy changes(&portal, &SettingsPortal::changed);
    desktopsPortal.set(appearanceSettings, "color-scheme", 1U);
    waitUntil([this] { return desktopsPortal.questions() > 1; });
    EXPECT_EQ(portal.wishes(), DesktopWishes());
    EXPECT_EQ(changes.count(), 0);
}

TEST(SettingsPortal, IsNothingWithoutABus) {
    const SettingsPortal portal("unix:path=/nothing/is/there");
    EXPECT_EQ(portal.wishes(), DesktopWishes());
}

TEST(SettingsPortal, WaitsForNoBusThatDoesNotAnswer) {
    const QTemporaryDir scratch;
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(scratch.path() + "/bus"));
    {
        const SettingsPortal portal("unix:path=" + silent.fullServerName());
        // Here the bus has a caller, and this thread is not it.
        ASSERT_TRUE(silent.waitForNewConnection(60'000));
        EXPECT_EQ(portal.wishes(), DesktopWishes());
        delete silent.nextPendingConnection();
    }
}

TEST_F(SettingsPortalTest, ReachesTheWindowsThemeAsItChanges) {
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    Desktop desktop;
    const auto following = followDesktop(desktop);
    if (before.isEmpty())
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    else
        qputenv("DBUS_SESSION_BUS_ADDRESS", before);
    QObject& look = theme();
    look.setProperty("desktop", QVariant::fromValue(&desktop));
    look.setProperty("appearance", "system");
    desktopsPortal.come();
    desktopsPortal.set(appearanceSettings, "color-scheme", 1U);
    waitUntil([&] { return look.property("isDark").toBool(); });
    desktopsPortal.set(appearanceSettings, "color-scheme", 2U);
    waitUntil([&] { return !look.property("isDark").toBool(); });
    desktopsPortal.set(appearanceSettings, "contrast", 1U);
    waitUntil([&] { return look.property("hasHighContrast").toBool(); });
    desktopsPortal.set(gnomeSettings, "enable-animations", false);
    waitUntil([&] { return look.property("listDuration") == 0; });
    desktopsPortal.set(gnomeSettings, "text-scaling-factor", 1.25);
    waitUntil([&] { return look.property("body").value<QFont>().pixelSize() == 16; });
    look.setProperty("appearance", "light");
    desktopsPortal.set(appearanceSettings, "color-scheme", 1U);
    waitUntil([&] { return desktop.appearance() == Desktop::Dark; });
    EXPECT_FALSE(look.property("isDark").toBool());
    look.setProperty("desktop", QVariant::fromValue<Desktop*>(nullptr));
}

}  // namespace
}  // namespace orvane::test
