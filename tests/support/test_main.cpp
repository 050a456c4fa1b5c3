#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
#ifndef Q_OS_WIN
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // the windows are real, the screen need not be
#endif
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationVersion(QStringLiteral("1.0.0"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
