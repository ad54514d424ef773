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

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
#ifdef ZARVI_TEST_WIDGETS
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    TestApplication app(argc, argv);
    zarvi::test::registerOperations();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
