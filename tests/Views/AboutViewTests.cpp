#include <QtGui/QDesktopServices>
#include <QtQml/QQmlComponent>

#include "Views/AboutModel.h"
#include "tests/Views/ControlTest.h"
#include "tests/Views/Styles.h"

namespace orvane::test {
namespace {

class AboutViewTest : public ControlTest {
  protected:
    QQuickItem& open() {
        QQuickItem& view = show("AboutView", {{"model", QVariant::fromValue(&model)}}, {500, 458});
        layOut();
        return view;
    }
    QRectF frame(const char* name) { return frameIn(*window->contentItem(), item(name)); }

    AboutModel model{Bundle(), mainContext.get_executor(), clock};
};

TEST_F(AboutViewTest, SaysWhatTheProgramIsAndWhoMadeIt) {
    const QQuickItem& view = open();
    EXPECT_EQ(textsIn(item("aboutTitles")).mid(0, 2),
              (QStringList{"Orvane", "Application uninstaller for macOS"}));
    EXPECT_EQ(accessibleName(item("versionText")), "Version 1.0 (1)");
    EXPECT_EQ(
        item("aboutDescription").property("text"),
        "Orvane helps you find installed applications, review their related files and services, and remove "
        "only the items you choose.");
    EXPECT_EQ(textsIn(item("makerTitles")), (QStringList{"Made by", "The Orvane Project"}));
    EXPECT_EQ(textsIn(item("contactLinks")), (QStringList{"GitHub", "LinkedIn", "Email"}));
    EXPECT_EQ(textsIn(view).constLast(), "Copyright © 2026 The Orvane Project");
}

TEST_F(AboutViewTest, HasEveryMeasure) {
    const QQuickItem& view = open();
    EXPECT_EQ(view.implicitWidth(), 500);
    EXPECT_EQ(frame("aboutIcon"), QRectF(194, 30, 112, 112));
    const QRectF titles = frame("aboutTitles");
    EXPECT_EQ(titles.top(), 142 + 18);
    EXPECT_EQ(titles.height(), 32 + 5 + 16 + 5 + 15);
    const QRectF description = frame("aboutDescription");
    EXPECT_EQ(description.top(), titles.bottom() + 18);
    EXPECT_EQ(description.left(), 30);
    EXPECT_EQ(description.width(), 440);
    const QRectF divider = frame("aboutDivider");
    EXPECT_EQ(divider, QRectF(30, description.bottom() + 18, 440, 1));
    const QRectF maker = frame("makerTitles");
    EXPECT_EQ(maker.top(), divider.bottom() + 18);
    EXPECT_EQ(maker.height(), 13 + 4 + 20);
    const QRectF links = frame("contactLinks");
    EXPECT_EQ(links.top(), maker.bottom() + 18);
    EXPECT_EQ(links.height(), 22);
    EXPECT_NEAR(links.center().x(), 250, 1);
    EXPECT_EQ(frame("professionalNetworkLink").left(), frame("sourceCodeLink").right() + 10);
    EXPECT_EQ(frame("emailLink").left(), frame("professionalNetworkLink").right() + 10);
    EXPECT_EQ(frame("copyEmailButton").left(), frame("emailLink").right() + 4);
    EXPECT_EQ(frame("copyrightText").top(), links.bottom() + 18);
    EXPECT_EQ(view.implicitHeight(), frame("copyrightText").bottom() + 30);
}

TEST_F(AboutViewTest, OpensItsLinks) {
    QQmlComponent component(&engine);
    component.setData(
        "import QtQml; QtObject { property var opened: []; function open(link: url) { "
        "opened.push(link.toString()) } }",
        {});
    const std::unique_ptr<QObject> browser(component.create());
    for (const char* scheme : {"https", "mailto"})
        QDesktopServices::setUrlHandler(scheme, browser.get(), "open");
    open();
    for (const char* link : {"sourceCodeLink", "professionalNetworkLink", "emailLink"}) click(item(link));
    for (const char* scheme : {"https", "mailto"}) QDesktopServices::unsetUrlHandler(scheme);
    EXPECT_EQ(browser->property("opened").toStringList(),
              (QStringList{model.sourceCodeURL().toString(), model.professionalNetworkURL().toString(),
                           "mailto:" + model.emailAddress()}));
}

TEST_F(AboutViewTest, ConfirmsForTwoSecondsThatTheAddressWasCopied) {
    open();
    QQuickItem& button = item("copyEmailButton");
    const auto symbol = [&] { return button.property("symbol").toString(); };
    EXPECT_EQ(symbol(), "doc.on.doc");
    EXPECT_EQ(accessibleName(button), "Copy email address");
    EXPECT_EQ(button.property("helpText"), "Copy email address");
    click(button);
    EXPECT_EQ(symbol(), "checkmark");
    EXPECT_EQ(accessibleName(button), "Email address copied");
    EXPECT_EQ(button.property("helpText"), "Email address copied");
    waitUntil([this] { return clock.sleeperCount() == 1; });
    clock.advance(std::chrono::milliseconds(1999));
    turn();
    EXPECT_EQ(symbol(), "checkmark");
    clock.advance(std::chrono::milliseconds(1));
    waitUntil([&] { return symbol() == "doc.on.doc"; });
    EXPECT_EQ(accessibleName(button), "Copy email address");
}

TEST_F(AboutViewTest, IsUsedWithTheKeyboardAlone) {
    open();
    for (const char* name : {"sourceCodeLink", "professionalNetworkLink", "emailLink", "copyEmailButton"}) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(isActive(name)) << name;
    }
    press(Qt::Key_Space);
    EXPECT_TRUE(model.isEmailCopied());
}

TEST_F(AboutViewTest, WritesEveryTextInItsStyleAndMarksItWithItsSymbol) {
    const QQuickItem& view = open();
    EXPECT_EQ(styleOf(view, "Orvane"), "26 bold label");
    EXPECT_EQ(styleOf(view, "Application uninstaller for macOS"), "13 bold secondary");
    EXPECT_EQ(item("versionText").property("font").value<QFont>().pixelSize(), 12);
    EXPECT_EQ(item("versionText").property("color").value<QColor>().name(QColor::HexArgb), "#80000000");
    EXPECT_EQ(item("aboutIcon").property("sourceSize").toSize(), QSize(112, 112));
    EXPECT_EQ(styleOf(view, item("aboutDescription").property("text").toString()), "13 regular secondary");
    EXPECT_EQ(styleOf(view, "Made by"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "The Orvane Project"), "15 bold label");
    EXPECT_EQ(styleOf(view, "Copyright © 2026 The Orvane Project"), "10 regular tertiary");
    EXPECT_EQ(symbolsIn(view),
              (QStringList{"chevron.left.forwardslash.chevron.right label", "doc.on.doc label",
                           "envelope.fill label", "person.crop.square label"}));
}

}  // namespace
}  // namespace orvane::test
