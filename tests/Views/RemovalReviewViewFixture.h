#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/Views/AppDetailViewFixture.h"

namespace orvane::test {

/// The review sheet over the detail pane of one application, whose plan each test fills.
class RemovalReviewViewTest : public AppDetailViewTest {
  protected:
    RemovalReviewViewTest() { mac.makeDirectory(TestVolume::home() + "/.Trash"); }

    /// Opens the sheet on the plan of Foo.
    void open() {
        showPlan(application("Foo"), {980, 700});
        reopen();
    }
    void reopen() {
        detail->setShowingRemovalSheet(true);
        waitUntilOpened("reviewSheet");
    }
    void waitUntilOpened(const QString& panel) {
        waitUntil([&] { return isThere(panel) && named(panel).property("isReady").toBool(); });
        layOut();
    }

    static std::string containerPath(const std::string& name) {
        return TestVolume::home() + "/Library/Group Containers/" + name;
    }
    void addContainer(const std::string& name) const { mac.makeFile(containerPath(name) + "/data"); }

    ReviewModel& review() { return *detail->review(); }
    /// What a sheet or an alert holds.
    QQuickItem& content(const QString& panel) {
        return *named(panel).property("contentItem").value<QQuickItem*>();
    }
    QRectF frameInSheet(const QQuickItem& item) { return frameIn(content("reviewSheet"), item); }
    QRectF frameInSheet(const QString& objectName) { return frameInSheet(item(objectName)); }
    std::vector<QQuickItem*> rows() { return itemsOfType(item("reviewList"), "ReviewItemRow"); }
    std::vector<bool> ticks() {
        std::vector<bool> result;
        for (const QQuickItem* row : rows()) result.push_back(row->property("checked").toBool());
        return result;
    }
    QString title(const QString& button) { return item(button).property("text").toString(); }
    QQuickItem& alertButton(const QString& alert, const QString& title) {
        for (QQuickItem* button : itemsOfType(content(alert), "PushButton"))
            if (button->property("text") == title) return *button;
        throw std::runtime_error("no button " + title.toStdString());
    }
    bool isShown(const QString& panel) { return named(panel).property("visible").toBool(); }
    /// What the alert says when the removal has ended.
    QString awaitResult() {
        waitUntilOpened("resultAlert");
        return textsIn(content("resultAlert")).value(1);
    }
    void deletePermanently() {
        click(item("deletePermanentlyButton"));
        waitUntilOpened("confirmationAlert");
        click(alertButton("confirmationAlert", "Delete Permanently"));
    }
};

}  // namespace orvane::test
