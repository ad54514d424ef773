#include "signal/operations/invert/Invert.h"

namespace zarvi {

void invert(std::span<double> values, double offset)
{
    for (double& value : values)
        value = 2.0 * offset - value;
}

} // namespace zarvi
