#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QObject>

#include "Views/Desktop/DesktopWishes.h"

namespace orvane {

/// How the desktop wishes its programs to look, as it is now: of each wish, what the settings portal says, or
/// else GTK's settings. What neither says is as the palette is, moves, has no higher contrast and text of the
/// usual size. Without anybody who tells it, it wishes nothing. Main thread.
class Desktop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Appearance appearance READ appearance NOTIFY changed FINAL)
    Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY changed FINAL)
    Q_PROPERTY(bool hasHighContrast READ hasHighContrast NOTIFY changed FINAL)
    /// From 1 to 1.25, which is as far as sheets of a fixed size have room in any font.
    Q_PROPERTY(double textScale READ textScale NOTIFY changed FINAL)

  public:
    enum Appearance { LikeThePalette, Light, Dark };
    Q_ENUM(Appearance)

    using QObject::QObject;

    Appearance appearance() const;
    bool reducesMotion() const { return wishes_.reducesMotion.value_or(false); }
    bool hasHighContrast() const { return wishes_.hasHighContrast.value_or(false); }
    double textScale() const;

    void portalSays(const DesktopWishes& wishes);
    void toolkitSays(const DesktopWishes& wishes);

  signals:
    void changed();

  private:
    void update();

    DesktopWishes portal_;
    DesktopWishes toolkit_;
    DesktopWishes wishes_;
};

}  // namespace orvane
