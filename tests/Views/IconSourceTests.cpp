#include "Views/Icons/IconSource.h"

#include <gtest/gtest.h>

#include <QtCore/QUrl>

namespace orvane {
namespace {

const QString generic = QStringLiteral("image://icons/generic");

InstalledApplication installed(const std::string& path) {
    InstalledApplication application;
    application.url = FileURL::fromPath(path, true);
    application.modifiedAt = Date{700'000'000.25};
    application.isInstalled = true;
    return application;
}

/// What the engine hands to an image provider for a URL that a view resolved.
QString idOf(const QString& source) {
    const QUrl url = QUrl(QStringLiteral("qrc:/qt/qml/Orvane/AppRow.qml")).resolved(QUrl(source));
    EXPECT_EQ(url.host(), QStringLiteral("icons"));
    return url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
}

TEST(IconSource, CarriesAPathOfAnyBytesThroughAURL) {
    std::string everyByte = "/Applications/../é%2F?#";
    for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
    everyByte += ".app";
    const InstalledApplication application = installed(everyByte);
    EXPECT_EQ(bundlePathOfIcon(idOf(iconSource(application))), application.url.path());
}

TEST(IconSource, ChangesWithTheBundle) {
    const InstalledApplication before = installed("/Applications/Foo.app");
    InstalledApplication after = before;
    after.modifiedAt->timeIntervalSinceReferenceDate += 0.001;
    EXPECT_NE(iconSource(before), iconSource(after));
    EXPECT_EQ(iconSource(before), iconSource(InstalledApplication(before)));
    after.modifiedAt.reset();
    EXPECT_TRUE(iconSource(after).endsWith(QStringLiteral("?0")));
}

TEST(IconSource, IsGenericForAnApplicationThatIsGone) {
    InstalledApplication application = installed("/Applications/Foo.app");
    application.isInstalled = false;
    EXPECT_EQ(iconSource(application), generic);
    EXPECT_EQ(bundlePathOfIcon(idOf(generic)), std::nullopt);
}

TEST(IconSource, IsGenericForAnApplicationWithoutAFile) {
    InstalledApplication application = installed("/x");
    application.url = FileURL::fromString("https://example.org/Foo.app").value();
    EXPECT_EQ(iconSource(application), generic);
    application.url = FileURL();
    EXPECT_EQ(iconSource(application), generic);
}

TEST(IconSource, TakesNoOtherTextForABundle) {
    EXPECT_EQ(bundlePathOfIcon(QStringLiteral("")), std::nullopt);
    EXPECT_EQ(bundlePathOfIcon(QStringLiteral("generic")), std::nullopt);
    EXPECT_EQ(bundlePathOfIcon(QStringLiteral("bundle/%%%?0")), std::nullopt);
}

}  // namespace
}  // namespace orvane
