#include "analysis/AnalysisOperationViews.h"
#include "analysis/AnalysisOperations.h"
#include "app/ApplicationStartup.h"
#include "behavior/BehaviorOperationViews.h"
#include "behavior/BehaviorOperations.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationViewRegistry.h"
#include "image/ImageOperationViews.h"
#include "image/ImageOperations.h"
#include "signal/SignalOperationViews.h"
#include "signal/SignalOperations.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    // Each family brings its operations and their views; nothing central lists them.
    zarvi::registerSignalOperations(zarvi::OperationRegistry::instance());
    zarvi::registerAnalysisOperations(zarvi::OperationRegistry::instance());
    zarvi::registerImageOperations(zarvi::OperationRegistry::instance());
    zarvi::registerBehaviorOperations(zarvi::OperationRegistry::instance());
    zarvi::registerSignalOperationViews(zarvi::OperationViewRegistry::instance());
    zarvi::registerAnalysisOperationViews(zarvi::OperationViewRegistry::instance());
    zarvi::registerImageOperationViews(zarvi::OperationViewRegistry::instance());
    zarvi::registerBehaviorOperationViews(zarvi::OperationViewRegistry::instance());
    zarvi::ApplicationStartup startup(application);
    return startup.run();
}
