#pragma once

#include <QtQml/qqmlregistration.h>

#include "Views/Keyboard/KeyFilter.h"

namespace orvane {

/// Whether the Alt key is down, which has menus show the letters that open them.
class AltKey : public KeyFilter {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool isDown READ isDown NOTIFY isDownChanged)

  public:
    explicit AltKey(QObject* parent = nullptr);

    bool isDown() const { return isDown_; }

  signals:
    void isDownChanged();

  private:
    bool keeps(const QKeyEvent& press) override;
    void cameUp(const QKeyEvent& release) override;
    void setDown(bool isDown);

    bool isDown_ = false;
};

}  // namespace orvane
