// Test entry for suites that need a Qt event loop (threads, queued signals) and, with
// ZARVI_TEST_WIDGETS, widgets. Without a display the widgets run offscreen, also when
// CTest lists the tests before running them. Each test folder says which operations
// its suites use in its Registration.cpp, as the programs' main functions do.
#include "common/TestRegistration.h"

#ifdef ZARVI_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // A folder of this run only: for the test screen's description and for what dialogs
    // remember, which must never reach the user's settings.
    const QTemporaryDir scratch;
#ifdef ZARVI_TEST_WIDGETS
    // Offscreen, the widgets sit on a screen of 1600 x 1000, the size dialogs are made for.
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty() || platform == "offscreen") {
        const QString config = scratch.filePath(QStringLiteral("screen.json"));
        QFile file(config);
        if (file.open(QIODevice::WriteOnly))
            file.write(R"({"screens": [{"name": "Test", "x": 0, "y": 0, "width": 1600, "height": 1000,
                          "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
        file.close();
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(config));
    }
#endif
    TestApplication app(argc, argv);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, scratch.path());
    zarvi::test::registerOperations();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
