#include "app/ApplicationStartup.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    zarvi::ApplicationStartup startup(application);
    return startup.run();
}
