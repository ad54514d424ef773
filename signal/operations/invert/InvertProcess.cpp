#include "signal/operations/invert/InvertProcess.h"

#include "signal/operations/invert/Invert.h"

namespace zarvi {

bool InvertProcess::computeOperation()
{
    m_output.time = std::move(m_input.time);
    m_output.values = std::move(m_input.values);
    invert(m_output.values, m_parameters.number(QStringLiteral("InvertOffset")));
    return true;
}

} // namespace zarvi
