#include "Programs/Window/Window.h"

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlApplicationEngine>
#include <utility>

#include "Programs/Window/WindowProgram.h"
#include "Views/Desktop/FollowDesktop.h"

namespace orvane::window {

int runWindow(Machine machine, const Options& options) {
    WindowProgram program(std::move(machine));
    Desktop desktop;
    const auto following = followDesktop(desktop);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icons"), program.makeIconProvider().release());
    engine.setInitialProperties({{QStringLiteral("contentModel"), QVariant::fromValue(&program.content())},
                                 {QStringLiteral("aboutModel"), QVariant::fromValue(&program.about())},
                                 {QStringLiteral("desktop"), QVariant::fromValue(&desktop)},
                                 {QStringLiteral("appearance"), QString::fromStdString(options.appearance)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/OrvaneApp.qml")));
    if (engine.rootObjects().isEmpty()) return 1;
    return QCoreApplication::exec();
}

}  // namespace orvane::window
