#include "Views/Desktop/Linux/GtkSettings.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <utility>

namespace orvane {
namespace {

constexpr qint64 longest = 64 * 1024;

/// The values of the section [Settings], by their names.
QHash<QByteArray, QByteArray> settingsIn(const QByteArray& text) {
    QHash<QByteArray, QByteArray> settings;
    bool isInSection = false;
    for (const QByteArray& line : text.split('\n')) {
        const QByteArray trimmed = line.trimmed();
        if (trimmed.startsWith('[')) isInSection = trimmed == "[Settings]";
        const qsizetype sign = trimmed.indexOf('=');
        if (!isInSection || trimmed.startsWith('#') || sign < 0) continue;
        settings.insert(trimmed.left(sign).trimmed(), trimmed.mid(sign + 1).trimmed());
    }
    return settings;
}

bool isTrue(const QByteArray& value) {
    const QByteArray word = value.toLower();
    return word == "1" || word == "true" || word == "yes";
}

QByteArray beginningOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(longest) : QByteArray();
}

}  // namespace

DesktopWishes wishesOfTheme(const QString& name) {
    DesktopWishes wishes;
    if (name.startsWith(QStringLiteral("HighContrast"), Qt::CaseInsensitive)) wishes.hasHighContrast = true;
    for (const char* ending : {"-dark", "HighContrastInverse"})
        if (name.endsWith(QLatin1String(ending), Qt::CaseInsensitive)) wishes.colorScheme = ColorScheme::dark;
    return wishes;
}

DesktopWishes wishesOfGtkSettings(const QByteArray& text) {
    const auto settings = settingsIn(text);
    DesktopWishes wishes = wishesOfTheme(QString::fromUtf8(settings.value("gtk-theme-name")));
    if (isTrue(settings.value("gtk-application-prefer-dark-theme"))) wishes.colorScheme = ColorScheme::dark;
    if (settings.contains("gtk-enable-animations"))
        wishes.reducesMotion = !isTrue(settings.value("gtk-enable-animations"));
    return wishes;
}

GtkSettings::GtkSettings(QString folder, QObject* parent) : QObject(parent), folder_(std::move(folder)) {
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &GtkSettings::read);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &GtkSettings::read);
    read();
}

void GtkSettings::read() {
    DesktopWishes now;
    // What is not there yet is seen to come in the folder that it comes in.
    QStringList places{folder_};
    for (const char* version : {"/gtk-4.0", "/gtk-3.0"}) {
        const QString place = folder_ + QLatin1String(version);
        const QString file = place + QStringLiteral("/settings.ini");
        places << place << file;
        now = firstSaid(now, wishesOfGtkSettings(beginningOf(file)));
    }
    QStringList news;
    for (const QString& place : places) {
        const bool isWatched = watcher_.files().contains(place) || watcher_.directories().contains(place);
        if (!isWatched && QFile::exists(place)) news << place;
    }
    // They may have changed before they were watched.
    if (!news.isEmpty() && watcher_.addPaths(news).size() < news.size()) return read();
    if (std::exchange(wishes_, now) != now) emit changed();
}

}  // namespace orvane
