#include "Views/AboutModel.h"

#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>
#include <chrono>
#include <utility>

#include "Platform/Task.h"
#include "Views/DisplayText.h"

namespace orvane {
namespace {

namespace maker {

// Who makes this program, and where to find them.
constexpr char name[] = "The Orvane Project";
constexpr char emailAddress[] = "orvane@example.org";
constexpr char sourceCodeProfile[] = "https://example.org/source/orvane";
constexpr char professionalProfile[] = "https://example.org/network/orvane";
/// Shown when the program's own bundle says nothing of it.
constexpr char copyright[] = "Copyright © 2026 The Orvane Project";

}  // namespace maker

constexpr std::chrono::seconds confirmationTime{2};

/// A destination is the build's own; one that is no URL is a mistake in it.
QUrl destination(const QString& text) {
    QUrl url(text, QUrl::StrictMode);
    if (!url.isValid()) qFatal("Not a URL: %s", qUtf8Printable(text));
    return url;
}

}  // namespace

AboutModel::AboutModel(Bundle program, asio::any_io_executor mainExecutor, Clock& clock, QObject* parent)
    : QObject(parent), program_(std::move(program)), mainExecutor_(std::move(mainExecutor)), clock_(clock) {}

QString AboutModel::versionText() const {
    return QStringLiteral("Version %1 (%2)")
        .arg(displayText(program_.shortVersion.value_or("1.0")), displayText(program_.version.value_or("1")));
}

QString AboutModel::copyrightText() const {
    return displayText(program_.copyright.value_or(maker::copyright));
}

QString AboutModel::makerName() const {
    return displayText(maker::name);
}

QString AboutModel::emailAddress() const {
    return displayText(maker::emailAddress);
}

QUrl AboutModel::emailURL() const {
    return destination(QStringLiteral("mailto:") + emailAddress());
}

QUrl AboutModel::sourceCodeURL() const {
    return destination(displayText(maker::sourceCodeProfile));
}

QUrl AboutModel::professionalNetworkURL() const {
    return destination(displayText(maker::professionalProfile));
}

void AboutModel::copyEmailAddress() {
    QGuiApplication::clipboard()->setText(emailAddress());
    setEmailCopied(true);
    spawn(mainExecutor_, endConfirmation(this, clock_));
}

Task<void> AboutModel::endConfirmation(QPointer<AboutModel> about, Clock& clock) {
    co_await clock.sleep(confirmationTime);
    if (about) about->setEmailCopied(false);
}

void AboutModel::open(const QUrl& url) {
    QDesktopServices::openUrl(url);
}

void AboutModel::setEmailCopied(bool isCopied) {
    if (std::exchange(isEmailCopied_, isCopied) != isCopied) emit isEmailCopiedChanged();
}

}  // namespace orvane
