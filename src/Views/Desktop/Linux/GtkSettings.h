#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>

#include "Views/Desktop/DesktopWishes.h"

namespace orvane {

/// What a theme of GTK's is for, which its name tells: "Adwaita-dark", "HighContrastInverse".
DesktopWishes wishesOfTheme(const QString& name);

/// What the text of a settings.ini of GTK's says. It can ask for the dark, never for the light: it does not
/// tell whether somebody has chosen that.
DesktopWishes wishesOfGtkSettings(const QByteArray& text);

/// GTK's settings in a folder of configuration: gtk-4.0/settings.ini, or else gtk-3.0/settings.ini. Followed
/// as they change.
class GtkSettings : public QObject {
    Q_OBJECT

  public:
    explicit GtkSettings(QString folder, QObject* parent = nullptr);

    const DesktopWishes& wishes() const { return wishes_; }

  signals:
    void changed();

  private:
    void read();

    QString folder_;
    QFileSystemWatcher watcher_;
    DesktopWishes wishes_;
};

}  // namespace orvane
