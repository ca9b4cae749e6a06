#include <gtest/gtest.h>

#include <QApplication>
#include <QFontDatabase>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // the offscreen platform has no fonts of its own on Windows
    QFontDatabase::addApplicationFont(":/fonts/DejaVuSans.ttf");
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
