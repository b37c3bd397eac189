#include "Views/AboutModel.h"

#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QSignalSpy>
#include <memory>

#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class AboutModelTest : public ViewModelTest {
  protected:
    /// The window of a program with these entries in its information dictionary.
    AboutModel& open(const std::string& entries = {}) {
        about = std::make_unique<AboutModel>(
            Bundle::fromInformation("<plist><dict>" + entries + "</dict></plist>"),
            mainContext.get_executor(), clock);
        return *about;
    }
    void copy() {
        const std::size_t sleepers = clock.sleeperCount();
        about->copyEmailAddress();
        waitUntil([&] { return clock.sleeperCount() == sleepers + 1; });
    }
    void pass(milliseconds time) {
        const std::size_t sleepers = clock.sleeperCount();
        clock.advance(time);
        if (sleepers > 0) waitUntil([&] { return clock.sleeperCount() < sleepers; });
    }

    std::unique_ptr<AboutModel> about;
};

TEST_F(AboutModelTest, ShowsVersionAndBuild) {
    open(
        "<key>CFBundleShortVersionString</key><string>2.3</string>"
        "<key>CFBundleVersion</key><string>45</string>");
    EXPECT_EQ(about->versionText(), "Version 2.3 (45)");
}

TEST_F(AboutModelTest, FallsBackWhereTheBundleSaysNothing) {
    open();
    EXPECT_EQ(about->versionText(), "Version 1.0 (1)");
    EXPECT_EQ(about->copyrightText(), "Copyright © 2026 The Orvane Project");
}

TEST_F(AboutModelTest, FallsBackWhereTheValuesAreNoText) {
    open(
        "<key>CFBundleShortVersionString</key><real>2.3</real><key>CFBundleVersion</key><integer>45</integer>"
        "<key>NSHumanReadableCopyright</key><true/>");
    EXPECT_EQ(about->versionText(), "Version 1.0 (1)");
    EXPECT_EQ(about->copyrightText(), "Copyright © 2026 The Orvane Project");
}

TEST_F(AboutModelTest, FallsBackWithoutAnyInformation) {
    const AboutModel bare(Bundle{}, mainContext.get_executor(), clock);
    EXPECT_EQ(bare.versionText(), "Version 1.0 (1)");
}

TEST_F(AboutModelTest, ShowsTheBundlesOwnCopyright) {
    open("<key>NSHumanReadableCopyright</key><string>© Example</string>");
    EXPECT_EQ(about->copyrightText(), "© Example");
}

TEST_F(AboutModelTest, KeepsAPlaceholderInAVersionAsItIs) {
    open("<key>CFBundleShortVersionString</key><string>%2</string>");
    EXPECT_EQ(about->versionText(), "Version %2 (1)");
}

TEST_F(AboutModelTest, NamesTheMaker) {
    open();
    EXPECT_EQ(about->makerName(), "The Orvane Project");
    EXPECT_EQ(about->emailURL().scheme(), "mailto");
    EXPECT_EQ(about->emailURL().path(), about->emailAddress());
    EXPECT_EQ(about->sourceCodeURL().scheme(), "https");
    EXPECT_EQ(about->professionalNetworkURL().scheme(), "https");
}

TEST_F(AboutModelTest, CopiesTheAddressAndSaysSoForTwoSeconds) {
    open();
    QSignalSpy changed(about.get(), &AboutModel::isEmailCopiedChanged);
    EXPECT_FALSE(about->isEmailCopied());
    copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), about->emailAddress());
    EXPECT_TRUE(about->isEmailCopied());
    clock.advance(milliseconds(1999));
    turn();
    EXPECT_TRUE(about->isEmailCopied());
    pass(milliseconds(1));
    EXPECT_FALSE(about->isEmailCopied());
    EXPECT_EQ(changed.size(), 2);
}

TEST_F(AboutModelTest, EndsTheConfirmationWithTheFirstOfTwoCopies) {
    open();
    copy();
    clock.advance(seconds(1));
    QGuiApplication::clipboard()->clear();
    copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), about->emailAddress());
    pass(seconds(1));
    EXPECT_FALSE(about->isEmailCopied());
    pass(seconds(1));
    EXPECT_FALSE(about->isEmailCopied());
}

TEST_F(AboutModelTest, CanGoAwayBeforeTheConfirmationEnds) {
    open();
    copy();
    about.reset();
    pass(seconds(2));
}

TEST_F(AboutModelTest, OpensLinksWithTheSystem) {
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import QtQml; QtObject { property url opened; function open(link: url) { opened = link } }", QUrl());
    const std::unique_ptr<QObject> system(component.create());
    QDesktopServices::setUrlHandler("mailto", system.get(), "open");
    open();
    about->open(about->emailURL());
    QDesktopServices::unsetUrlHandler("mailto");
    EXPECT_EQ(system->property("opened").toUrl(), about->emailURL());
}

}  // namespace
}  // namespace orvane::test
