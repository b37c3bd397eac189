#include <gtest/gtest.h>

#include <QtGui/QGuiApplication>

#include "Views/Keyboard/KeyFilters.h"
#include "Views/Style/Rendering.h"

namespace {

/// Whatever Qt warns of (a binding loop, an undefined property, a missing file) fails the test that runs.
void failOnWarning(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    // Windows that are nowhere lie on top of nothing, and nobody needs to know how small they may become.
    for (const char* untold : {"raise", "propagateSizeHints"})
        if (message == QStringLiteral("This plugin does not support %1()").arg(QLatin1String(untold))) return;
    ADD_FAILURE_AT(context.file ? context.file : "Qt", context.line) << message.toStdString();
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    orvane::chooseRenderer();
    QGuiApplication application(argc, argv);
    orvane::chooseFont();
    const orvane::HeldKeys heldKeys;
    qInstallMessageHandler(failOnWarning);
    return RUN_ALL_TESTS();
}
