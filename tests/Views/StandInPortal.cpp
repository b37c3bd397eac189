#include "tests/Views/StandInPortal.h"

#include <QtCore/QUuid>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusVariant>
#include <stdexcept>

namespace orvane::test {
namespace {

const char* const portalName = "org.freedesktop.portal.Desktop";
const char* const portalObject = "/org/freedesktop/portal/desktop";
const char* const settingsInterface = "org.freedesktop.portal.Settings";

}  // namespace

MessageBus::MessageBus() {
    daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    while (daemon_.waitForReadyRead() && !daemon_.canReadLine()) {
    }
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    if (address_.isEmpty()) throw std::runtime_error("no message bus has started");
}

MessageBus::~MessageBus() {
    daemon_.kill();
    daemon_.waitForFinished();
}

StandInPortal::StandInPortal(const QString& busAddress)
    : name_(QUuid::createUuid().toString()), bus_(QDBusConnection::connectToBus(busAddress, name_)) {
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    if (!bus_.registerVirtualObject(portalObject, this))
        throw std::runtime_error("nothing can be offered on the message bus");
}

StandInPortal::~StandInPortal() {
    bus_.unregisterObject(portalObject);
    QDBusConnection::disconnectFromBus(name_);
}

void StandInPortal::come() {
    if (!bus_.registerService(portalName)) throw std::runtime_error("somebody else is the portal");
}

void StandInPortal::go() {
    bus_.unregisterService(portalName);
}

void StandInPortal::set(const QString& settings, const QString& key, const QVariant& value) {
    settings_[settings][key] = value;
    lie(settings, key, value);
}

void StandInPortal::lie(const QString& settings, const QString& key, const QVariant& value) {
    QDBusMessage news = QDBusMessage::createSignal(portalObject, settingsInterface, "SettingChanged");
    news << settings << key << QVariant::fromValue(QDBusVariant(value));
    bus_.send(news);
}

bool StandInPortal::handleMessage(const QDBusMessage& question, const QDBusConnection& bus) {
    if (question.interface() != settingsInterface || question.member() != "ReadAll") return false;
    ++questions_;
    if (answersNonsense_) return bus.send(question.createReply(QString("nonsense")));
    QMap<QString, QVariantMap> asked;
    for (const QString& name : question.arguments().at(0).toStringList())
        if (settings_.contains(name)) asked[name] = settings_[name];
    return bus.send(question.createReply(QVariant::fromValue(asked)));
}

}  // namespace orvane::test
