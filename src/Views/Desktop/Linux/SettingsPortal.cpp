#include "Views/Desktop/Linux/SettingsPortal.h"

#include <QtCore/QStringList>
#include <QtCore/QUuid>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <utility>

#include "Views/Desktop/Linux/GtkSettings.h"

namespace orvane {
namespace {

constexpr QLatin1String portalService("org.freedesktop.portal.Desktop");
constexpr QLatin1String portalPath("/org/freedesktop/portal/desktop");
constexpr QLatin1String portalInterface("org.freedesktop.portal.Settings");

constexpr QLatin1String appearanceSettings("org.freedesktop.appearance");
constexpr QLatin1String gnomeSettings("org.gnome.desktop.interface");
constexpr QLatin1String gnomeAccessibilitySettings("org.gnome.desktop.a11y.interface");

DesktopWishes wishesOfAppearance(const QVariantMap& settings) {
    DesktopWishes wishes;
    const uint scheme = settings.value(QStringLiteral("color-scheme")).toUInt();
    if (scheme == 1) wishes.colorScheme = ColorScheme::dark;
    if (scheme == 2) wishes.colorScheme = ColorScheme::light;
    if (settings.value(QStringLiteral("contrast")).toUInt() == 1) wishes.hasHighContrast = true;
    if (settings.value(QStringLiteral("reduced-motion")).toUInt() == 1) wishes.reducesMotion = true;
    return wishes;
}

DesktopWishes wishesOfGnome(const QVariantMap& settings) {
    DesktopWishes wishes;
    const QString scheme = settings.value(QStringLiteral("color-scheme")).toString();
    if (scheme == QStringLiteral("prefer-dark")) wishes.colorScheme = ColorScheme::dark;
    if (scheme == QStringLiteral("prefer-light")) wishes.colorScheme = ColorScheme::light;
    const QVariant animations = settings.value(QStringLiteral("enable-animations"));
    if (animations.isValid()) wishes.reducesMotion = !animations.toBool();
    const double scale = settings.value(QStringLiteral("text-scaling-factor")).toDouble();
    if (scale > 0) wishes.textScale = scale;
    return firstSaid(wishes, wishesOfTheme(settings.value(QStringLiteral("gtk-theme")).toString()));
}

DesktopWishes wishesOfGnomeAccessibility(const QVariantMap& settings) {
    DesktopWishes wishes;
    if (settings.value(QStringLiteral("high-contrast")).toBool()) wishes.hasHighContrast = true;
    return wishes;
}

}  // namespace

DesktopWishes wishesOfPortal(const QMap<QString, QVariantMap>& settings) {
    return firstSaid(wishesOfAppearance(settings.value(appearanceSettings)),
                     firstSaid(wishesOfGnomeAccessibility(settings.value(gnomeAccessibilitySettings)),
                               wishesOfGnome(settings.value(gnomeSettings))));
}

SettingsPortal::SettingsPortal(const QString& busAddress, QObject* parent)
    : QObject(parent),
      name_(QUuid::createUuid().toString()),
      connecting_(QThread::create([busAddress, name = name_] {
          static_cast<void>(QDBusConnection::connectToBus(busAddress, name));
      })) {
    connect(connecting_.get(), &QThread::finished, this, &SettingsPortal::listen);
    connecting_->start();
}

SettingsPortal::~SettingsPortal() {
    connecting_->wait();
    QDBusConnection::disconnectFromBus(name_);
}

void SettingsPortal::listen() {
    QDBusConnection bus(name_);
    if (!bus.isConnected()) return;
    // Whoever says it: what has changed is asked for, and not believed. To name the sender would be to wait
    // for the bus.
    bus.connect({}, portalPath, portalInterface, QStringLiteral("SettingChanged"), this, SLOT(ask()));
    bus.connect(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"), {portalService},
                QStringLiteral("sss"), this, SLOT(ask()));
    ask();
}

void SettingsPortal::ask() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, QStringLiteral("ReadAll"));
    question << QStringList{appearanceSettings, gnomeSettings, gnomeAccessibilitySettings};
    auto* const answer = new QDBusPendingCallWatcher(QDBusConnection(name_).asyncCall(question), this);
    const int number = ++lastQuestion_;
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, number](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusMessage reply = call->reply();
        // What a portal has said holds while it is away, as for a restart.
        if (number != lastQuestion_ || reply.signature() != QStringLiteral("a{sa{sv}}")) return;
        const DesktopWishes now = wishesOfPortal(
            qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().at(0).value<QDBusArgument>()));
        if (std::exchange(wishes_, now) != now) emit changed();
    });
}

}  // namespace orvane
