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

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers look for these names.
// What the sanitizers are told about Qt, which is built without them: it keeps some of what it makes for as
// long as the program runs, and locks in ways that the thread sanitizer cannot see.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6\nleak:libfontconfig\n";
}
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "ignore_noninstrumented_modules=1";
}
// NOLINTEND(bugprone-reserved-identifier)

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
