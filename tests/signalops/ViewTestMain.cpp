#include <QApplication>

#include <gtest/gtest.h>

// The views are widgets: they need one application object for the whole run, and
// without a display they draw offscreen (also when CTest lists the cases).
int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
