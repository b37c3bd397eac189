#include "Views/Desktop/FollowDesktop.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>

#include "Views/Desktop/Linux/GtkSettings.h"
#include "Views/Desktop/Linux/SettingsPortal.h"

namespace orvane {
namespace {

/// Where the session's message bus is; empty where there is none. Asking for it in any other way may start
/// one.
QString sessionBusAddress() {
    if (QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"); !address.isEmpty())
        return address;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString socket = runtime + QStringLiteral("/bus");
    return !runtime.isEmpty() && QFile::exists(socket) ? QStringLiteral("unix:path=") + socket : QString();
}

/// On X11 a desktop tells its text scale as the resolution of the screen, by which Qt makes everything
/// larger.
bool isTextScaledByQt() {
    return QGuiApplication::platformName() == QStringLiteral("xcb");
}

}  // namespace

std::unique_ptr<QObject> followDesktop(Desktop& desktop) {
    auto followers = std::make_unique<QObject>();
    const auto* const gtk = new GtkSettings(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation), followers.get());
    const auto tellGtks = [gtk, &desktop] { desktop.toolkitSays(gtk->wishes()); };
    QObject::connect(gtk, &GtkSettings::changed, &desktop, tellGtks);
    tellGtks();

    if (const QString address = sessionBusAddress(); !address.isEmpty()) {
        const auto* const portal = new SettingsPortal(address, followers.get());
        QObject::connect(portal, &SettingsPortal::changed, &desktop, [portal, &desktop] {
            DesktopWishes wishes = portal->wishes();
            if (isTextScaledByQt()) wishes.textScale.reset();
            desktop.portalSays(wishes);
        });
    }
    return followers;
}

}  // namespace orvane
