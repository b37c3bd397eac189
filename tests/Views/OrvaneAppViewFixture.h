#pragma once

#include <QtQml/QQmlComponent>
#include <QtTest/QTest>
#include <algorithm>
#include <stdexcept>

#include "Views/AboutModel.h"
#include "Views/ContentModel.h"
#include "Views/Desktop/Desktop.h"
#include "tests/Views/ControlTest.h"

namespace orvane::test {

/// The whole window over the library of a volume.
class OrvaneAppViewTest : public ControlTest, private AppLibrary::Observer {
  protected:
    OrvaneAppViewTest() { library->addObserver(*this); }
    ~OrvaneAppViewTest() override { library->removeObserver(*this); }

    void open() {
        QQmlComponent component(&engine, QUrl("qrc:/qt/qml/Orvane/OrvaneApp.qml"));
        window.reset(qobject_cast<QQuickWindow*>(
            component.createWithInitialProperties({{"contentModel", QVariant::fromValue(&content)},
                                                   {"aboutModel", QVariant::fromValue(&about)},
                                                   {"desktop", QVariant::fromValue(&desktop)},
                                                   {"appearance", "light"}})));
        if (!window) throw std::runtime_error(component.errorString().toStdString());
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    QWindow& aboutWindow() { return *window->findChild<QWindow*>("about"); }
    QObject& command(const char* name) { return *window->findChild<QObject*>(name); }
    int shownAboutWindows() {
        return static_cast<int>(
            std::ranges::count_if(QGuiApplication::topLevelWindows(), [](QWindow* candidate) {
                return candidate->isVisible() && candidate->title() == "About Orvane";
            }));
    }

    int scansEnded = 0;
    /// It wishes what the test says.
    Desktop desktop;
    ContentModel content{services};
    AboutModel about{Bundle(), mainContext.get_executor(), clock};

  private:
    void libraryDidChange(AppLibrary::Field field) override {
        if (field == AppLibrary::Field::isScanning && !library->isScanning()) ++scansEnded;
    }
};

}  // namespace orvane::test
