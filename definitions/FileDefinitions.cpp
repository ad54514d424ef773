#include "definitions/FileDefinitions.h"

namespace zarvi {

const QStringList& FileDefinitions::reservedNames()
{
    static const QStringList names{Configurations, DataConverted, DataImported, DataAcquisition,
                                   DataProcessed,  DataAnalyzed,  DataBehavior, ExperimentDesign,
                                   Coordinates,    Events,        Images,       Measures,
                                   ROISignals,     Signals,       TimePeriods,  Video};
    return names;
}

const QStringList& FileDefinitions::rootCategories()
{
    static const QStringList names = reservedNames().mid(0, 8);
    return names;
}

bool FileDefinitions::isStructuralName(const QString& component)
{
    return reservedNames().contains(component, Qt::CaseSensitive) ||
           component.contains(SeriesText, Qt::CaseSensitive);
}

} // namespace zarvi
