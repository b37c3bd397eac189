#pragma once

#include <QtGui/QColor>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Views/DetailModel.h"
#include "tests/Views/ViewTest.h"

namespace orvane::test {

/// The detail pane of one application, over a disk that each test fills.
class AppDetailViewTest : public ViewTest {
  protected:
    static constexpr qreal padding = 28;
    static constexpr qreal spacing = 24;
    const QString servicesSection = QStringLiteral("servicesSection");
    const QString filesSection = QStringLiteral("filesSection");

    AppDetailViewTest() {
        for (const char* folder : {"/Library/Caches", "/Library/LaunchAgents"})
            mac.makeDirectory(TestVolume::home() + folder);
    }

    /// The pane, before its plan has arrived.
    QQuickItem& showLoading(const InstalledApplication& record, QSize size = {700, 900}) {
        holdPool();
        detail = std::make_unique<DetailModel>(record, services);
        pane = &show(QStringLiteral("AppDetailView"),
                     {{QStringLiteral("model"), QVariant::fromValue(detail.get())}}, size);
        layOut();
        return *pane;
    }
    /// The pane with its plan.
    QQuickItem& showPlan(const InstalledApplication& record, QSize size = {700, 900}) {
        showLoading(record, size);
        releasePool();
        waitUntil([this] { return !detail->isLoading(); });
        layOut();
        return *pane;
    }

    void addCache(const std::string& name, const std::string& contents = std::string(5000, 'x')) const {
        mac.makeFile(TestVolume::home() + "/Library/Caches/" + name + "/data", contents);
    }
    void addLaunchAgent(const std::string& name, const std::string& label) const {
        mac.makeFile(TestVolume::home() + "/Library/LaunchAgents/" + name + ".plist", launchItem(label));
    }
    void addLaunchDaemon(const std::string& name, const std::string& label) const {
        mac.makeFile("/Library/LaunchDaemons/" + name + ".plist", launchItem(label));
    }
    static std::string launchItem(const std::string& label) {
        return "<plist version=\"1.0\"><dict><key>Label</key><string>" + label +
               "</string><key>Program</key><string>/Applications/Foo.app/Contents/MacOS/Foo org.example.Foo"
               "</string></dict></plist>";
    }
    void run(std::int32_t processIdentifier, const std::string& name) {
        workspace.setRunningApplications(
            {{processIdentifier, name, FileURL::fromPath("/Applications/Foo.app/Contents/MacOS/Foo", false),
              "org.example.Foo"}});
    }

    QRectF frame(const QString& objectName) { return frameIn(*pane, item(objectName)); }
    /// The box below the heading of a section.
    QQuickItem& box(const QString& section) {
        return *itemsOfType(item(section), QStringLiteral("orvane::PixelRectangle")).front();
    }
    std::vector<QQuickItem*> rows(const QString& section) {
        auto rows = itemsOfType(item(section), QStringLiteral("RelatedItemRow"));
        std::ranges::sort(rows, {}, [](const QQuickItem* row) { return row->property("index").toInt(); });
        return rows;
    }
    QStringList cardTexts() { return textsIn(item(QStringLiteral("summaryCards"))); }
    bool isEnabled(const QString& button) { return item(button).isEnabled(); }
    static QColor tint(const QQuickItem& row) {
        return itemsOfType(row, QStringLiteral("orvane::Symbol")).front()->property("color").value<QColor>();
    }

    std::unique_ptr<DetailModel> detail;
    QQuickItem* pane = nullptr;
};

}  // namespace orvane::test
