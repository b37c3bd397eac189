// Draws every symbol, named, at the sizes that the window shows it in, and saves the sheet in both
// appearances:
//   orvane-symbol-sheet FOLDER     writes FOLDER/symbols-light.png and FOLDER/symbols-dark.png

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>
#include <cstdio>
#include <memory>

#include "Views/Style/Rendering.h"

namespace {

bool save(QQmlEngine& engine, const QStringList& names, const QString& appearance, const QDir& folder) {
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/SymbolSheet.qml")));
    const std::unique_ptr<QObject> object(component.createWithInitialProperties(
        {{QStringLiteral("names"), names}, {QStringLiteral("appearance"), appearance}}));
    auto* const window = qobject_cast<QQuickWindow*>(object.get());
    if (!window) {
        std::fprintf(stderr, "orvane-symbol-sheet: %s\n", qPrintable(component.errorString()));
        return false;
    }
    const QString file = folder.filePath(QStringLiteral("symbols-%1.png").arg(appearance));
    if (window->grabWindow().convertToFormat(QImage::Format_Grayscale8).save(file)) return true;
    std::fprintf(stderr, "orvane-symbol-sheet: %s cannot be written\n", qPrintable(file));
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("orvane-symbol-sheet: the folder for the pictures is missing\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "2");
    orvane::chooseRenderer();
    const QGuiApplication application(argc, argv);
    orvane::chooseFont();
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    QStringList names = QDir(QStringLiteral(":/qt/qml/Orvane/Symbols")).entryList(QDir::Files, QDir::Name);
    names.replaceInStrings(QStringLiteral(".svg"), QString());
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const char* appearance : {"light", "dark"})
        if (!save(engine, names, QLatin1String(appearance), folder)) return 1;
    return 0;
}
