#include "tests/Views/WindowStates.h"

namespace orvane::test {

void WindowStatesTest::visitEveryState(const Visit& visit) {
    mac.makeDirectory(TestVolume::home() + "/.Trash");
    desktop.toolkitSays({{}, true, {}, {}});
    open();
    window->resize(window->minimumSize());
    const auto show = [&](const char* state) {
        settle(*window);
        visit(state, *window);
    };
    waitUntil([this] { return scansEnded > 0; });
    show("empty");

    fillDisk();
    content.rescan();
    showPane("Mail");
    show("protected");
    showPane("Foo");
    show("main");

    DetailModel& pane = *content.detail();
    pane.setShowingRemovalSheet(true);
    waitUntilReady("reviewSheet");
    show("review");
    pane.review()->setConfirmingPermanentDeletion(true);
    waitUntilReady("confirmationAlert");
    show("confirmation");
    holdPool();
    pane.review()->deletePermanently();
    waitUntil([this] { return !named("confirmationAlert").property("visible").toBool(); });
    show("removal");
    releasePool();
    waitUntilReady("resultAlert");
    show("result");

    pane.review()->acknowledgeResult();
    QMetaObject::invokeMethod(&command("aboutCommand"), "trigger");
    auto& about_ = dynamic_cast<QQuickWindow&>(aboutWindow());
    waitUntil([&] { return about_.isExposed(); });
    settle(about_);
    visit("about", about_);
    about_.close();

    openFrontDoor();
    show("frontDoor");
}

void WindowStatesTest::openFrontDoor() {
    for (const char* folder : {"/disk/Applications", "/disk/Library", "/disk/Users/anna", "/disk/Users/ben"})
        mac.makeDirectory(folder);
    door_ = std::make_unique<FrontDoorModel>(
        FrontDoorModel::Surroundings{mainContext.get_executor(), pool.get_executor(),
                                     [] { return std::vector<std::string>(); }, std::chrono::minutes(1)},
        FrontDoorModel::OnlyDisk::isOffered, true);
    QQmlComponent component(&engine, QUrl("qrc:/qt/qml/Orvane/FrontDoor.qml"));
    window.reset(qobject_cast<QQuickWindow*>(
        component.createWithInitialProperties({{"model", QVariant::fromValue(door_.get())},
                                               {"desktop", QVariant::fromValue(&desktop)},
                                               {"appearance", "light"}})));
    window->resize(window->minimumSize());
    door_->openFolder(QUrl::fromLocalFile(QString::fromStdString(mac.machinePath("/disk"))));
    waitUntil([this] { return !door_->isLooking(); });
    door_->setMessage(QStringLiteral("The disk could not be opened"));
    window->requestActivate();
    waitUntil([this] { return window->isVisible() && window->isActive(); });
}

QQuickItem& WindowStatesTest::layer(QQuickWindow& seen) {
    for (const char* panel : {"resultAlert", "confirmationAlert", "reviewSheet"})
        if (&seen == window.get() && isThere(panel) && named(panel).property("visible").toBool())
            return *named(panel).property("contentItem").value<QQuickItem*>()->parentItem();
    return *seen.contentItem();
}

void WindowStatesTest::fillDisk() {
    installBundle("Foo");
    installBundle("A name that is as long as one that somebody may have given");
    mac.makeFile("/System/Applications/Mail.app/Contents/Info.plist",
                 "<plist version=\"1.0\"><dict><key>CFBundlePackageType</key><string>APPL</string>"
                 "<key>CFBundleName</key><string>Mail</string></dict></plist>");
    for (const char* folder : {"Caches", "Application Support", "HTTPStorages", "WebKit"})
        mac.makeFile(TestVolume::home() + "/Library/" + folder + "/org.example.Foo/data",
                     std::string(5000, 'x'));
    mac.makeFile("/Library/LaunchDaemons/org.example.Foo.a-helper-with-a-long-name.plist",
                 "<plist version=\"1.0\"><dict><key>Label</key><string>org.example.Foo.helper</string>"
                 "<key>Program</key><string>/Applications/Foo.app/org.example.Foo</string></dict></plist>");
    workspace.setRunningApplications(
        {{12345, "Foo", FileURL::fromPath("/Applications/Foo.app/Contents/MacOS/Foo", false),
          "org.example.Foo"}});
}

void WindowStatesTest::showPane(const char* application) {
    const auto isShown = [&] {
        const auto* const detail = content.detail();
        return detail && detail->name() == application && !detail->isLoading();
    };
    waitUntil([&] {
        for (const InstalledApplication& record : library->applications())
            if (record.name == application) library->setSelectedApplicationID(record.id());
        return isShown();
    });
}

void WindowStatesTest::waitUntilReady(const char* panel) {
    waitUntil([&] { return isThere(panel) && named(panel).property("isReady").toBool(); });
}

void WindowStatesTest::settle(QQuickWindow& seen) {
    // Two pictures that are the same, for what an event of the first may still change.
    QImage before;
    waitUntil([&] {
        const QImage now = seen.grabWindow();
        return std::exchange(before, now) == now;
    });
}

}  // namespace orvane::test
