#include "framework/PlotLookSnapshot.h"

#include "framework/PlotStyle.h"

#include <qcustomplot.h>

#include <array>

namespace zarvi {

namespace {

// The look of the plot's parts, by their declared properties: QCustomPlot's axes, grids,
// legend and its entries, text elements, plottables and items all name them alike.
constexpr std::array lookProperties = {"pen",        "brush",   "subGridPen", "zeroLinePen",
                                       "basePen",    "tickPen", "subTickPen", "tickLabelColor",
                                       "labelColor", "label",   "borderPen",  "textColor"};

} // namespace

PlotLookSnapshot::PlotLookSnapshot(QCustomPlot* plot)
    : m_plot(plot), m_background(PlotStyle::backgroundOf(plot))
{
    // Every part of a plot is a child of it, also the axes of colour scales.
    for (QCPLayerable* part : plot->findChildren<QCPLayerable*>())
        for (const char* name : lookProperties) {
            const QMetaObject* meta = part->metaObject();
            if (meta->indexOfProperty(name) >= 0)
                m_properties.push_back({part, name, part->property(name)});
        }
}

void PlotLookSnapshot::restore() const
{
    if (!m_plot)
        return;
    m_plot->setBackground(m_background);
    for (const Property& property : m_properties)
        if (property.object)
            property.object->setProperty(property.name, property.value);
}

} // namespace zarvi
