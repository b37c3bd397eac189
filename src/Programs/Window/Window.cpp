#include "Programs/Window/Window.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlComponent>
#include <QtQuick/QQuickWindow>
#include <asio/thread_pool.hpp>
#include <chrono>
#include <memory>
#include <utility>

#include "Platform/MacDisks.h"
#include "Programs/Window/WindowProgram.h"
#include "Views/Desktop/FollowDesktop.h"
#include "Views/Desktop/NativeMenuBar.h"
#include "Views/Desktop/TitleBar.h"
#include "Views/DisplayText.h"
#include "Views/FrontDoor/DiskNotice.h"
#include "Views/FrontDoor/FrontDoorModel.h"

namespace orvane::window {
namespace {

bool load(QQmlApplicationEngine& engine, const char* view, const QVariantMap& properties) {
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties(properties);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/") + QLatin1String(view)));
    return !engine.rootObjects().isEmpty();
}

/// The platform takes the main window's title bar and its menus, where it does; what it keeps the menus in.
std::unique_ptr<QObject> giveToPlatform(QQmlApplicationEngine& engine) {
    auto* const window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    if (window == nullptr) return nullptr;
    hideTitleBar(*window);
    if (nativeMenuBar().isEmpty()) return nullptr;
    QQmlComponent menus(&engine, nativeMenuBar());
    return std::unique_ptr<QObject>(
        menus.createWithInitialProperties({{QStringLiteral("mirrored"), window->property("menuBar")}}));
}

/// One window goes and another one comes: that the last one has closed is not the end of the program.
void beginWindow() {
    QCoreApplication::removePostedEvents(QCoreApplication::instance(), QEvent::Quit);
    QGuiApplication::setQuitOnLastWindowClosed(true);
}
void makePlaceForAnotherWindow() {
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

WindowEnd runWindow(Machine machine, const Options& options) {
    beginWindow();
    QString notice;
    if (options.machine.root && looksAtMacDisks()) {
        const auto home = machine.fileManager->homeDirectoryForCurrentUser().path();
        const auto found = macDisksAmong({*options.machine.root}, std::chrono::seconds(3));
        if (!found.disks.empty()) notice = diskNotice(found.disks.front(), home);
    }
    WindowProgram program(std::move(machine));
    // The saved list is read on other threads while the views are made.
    program.content().load();
    QCoreApplication::sendPostedEvents();
    Desktop desktop;
    const auto following = followDesktop(desktop);
    QQmlApplicationEngine engine;
    engine.addImageProvider(QStringLiteral("icons"), program.makeIconProvider().release());
    const bool isLoaded = load(engine, "OrvaneApp.qml",
                               {{QStringLiteral("contentModel"), QVariant::fromValue(&program.content())},
                                {QStringLiteral("aboutModel"), QVariant::fromValue(&program.about())},
                                {QStringLiteral("desktop"), QVariant::fromValue(&desktop)},
                                {QStringLiteral("appearance"), QString::fromStdString(options.appearance)},
                                {QStringLiteral("opensDisks"), looksAtMacDisks()},
                                {QStringLiteral("titleBarAir"), titleBarAir()},
                                {QStringLiteral("hasNativeMenuBar"), !nativeMenuBar().isEmpty()},
                                {QStringLiteral("diskNotice"), notice}});
    if (!isLoaded) return {.status = 1};
    const std::unique_ptr<QObject> menus = giveToPlatform(engine);
    const int status = QCoreApplication::exec();
    const bool isForAnotherDisk = engine.rootObjects().constFirst()->property("isForAnotherDisk").toBool();
    if (isForAnotherDisk) makePlaceForAnotherWindow();
    return {status, isForAnotherDisk};
}

std::optional<MachineOptions> askForDisk(const Options& options, bool isReturn, const std::string& message) {
    beginWindow();
    QtExecutionContext main;
    asio::thread_pool pool(1);
    std::optional<MachineOptions> choice;
    Desktop desktop;
    const auto following = followDesktop(desktop);
    {
        using OnlyDisk = FrontDoorModel::OnlyDisk;
        FrontDoorModel model({main.get_executor(), pool.get_executor()},
                             isReturn || !message.empty() ? OnlyDisk::isOffered : OnlyDisk::isOpened,
                             isReturn);
        QObject::connect(&model, &FrontDoorModel::chosen, &model, [&](const DiskPlace& place) {
            choice = MachineOptions{place.root, place.home, options.machine.rootPart};
            QCoreApplication::exit(0);
        });
        QObject::connect(&model, &FrontDoorModel::cancelled, &model, [&] {
            choice = options.machine;
            QCoreApplication::exit(0);
        });
        QQmlApplicationEngine engine;
        if (load(engine, "FrontDoor.qml",
                 {{QStringLiteral("model"), QVariant::fromValue(&model)},
                  {QStringLiteral("desktop"), QVariant::fromValue(&desktop)},
                  {QStringLiteral("appearance"), QString::fromStdString(options.appearance)}})) {
            model.look();
            if (!message.empty()) model.setMessage(displayText(message));
            QCoreApplication::exec();
            if (choice) makePlaceForAnotherWindow();
        }
    }
    pool.join();
    return choice;
}

}  // namespace orvane::window
