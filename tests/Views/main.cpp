#include <gtest/gtest.h>

#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

namespace {

/// Whatever Qt warns of (a binding loop, an undefined property, a missing file) fails the test that runs.
void failOnWarning(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    ADD_FAILURE_AT(context.file ? context.file : "Qt", context.line) << message.toStdString();
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(failOnWarning);
    return RUN_ALL_TESTS();
}
