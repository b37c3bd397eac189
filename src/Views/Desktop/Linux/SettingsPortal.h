#pragma once

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QThread>
#include <QtCore/QVariantMap>
#include <memory>

#include "Views/Desktop/DesktopWishes.h"

namespace orvane {

/// What the settings say that a portal gives: values by name, by namespace.
DesktopWishes wishesOfPortal(const QMap<QString, QVariantMap>& settings);

/// The desktop's settings as org.freedesktop.portal.Settings gives them on a message bus, and tells of their
/// changes. Nothing here waits: the bus is connected to on a thread of its own. Without a bus, or a portal on
/// it, nothing is wished; one that comes later is heard.
class SettingsPortal : public QObject {
    Q_OBJECT

  public:
    explicit SettingsPortal(const QString& busAddress, QObject* parent = nullptr);
    /// Waits until it is known whether there is a bus.
    ~SettingsPortal() override;

    const DesktopWishes& wishes() const { return wishes_; }

  signals:
    void changed();

  private:
    Q_SLOT void ask();
    void listen();

    /// What the connection is called in this process.
    QString name_;
    std::unique_ptr<QThread> connecting_;
    int lastQuestion_ = 0;
    DesktopWishes wishes_;
};

}  // namespace orvane
