#include <QCoreApplication>

#include <gtest/gtest.h>

// The operation runner used by the tests needs an application's event loop.
int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
