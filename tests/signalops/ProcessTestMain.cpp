#include <QCoreApplication>

#include <gtest/gtest.h>

// The operations run on worker threads that report back through queued signals,
// so the tests need a Qt application and its event loop.
int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
