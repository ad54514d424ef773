#include "image/operations/discardframes/FrameSelection.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

bool FrameSelection::discard(const std::vector<double>& indices, double& badIndex)
{
    const double frames = static_cast<double>(m_discarded.size());
    const auto bad = std::find_if(indices.begin(), indices.end(), [frames](double index) {
        return !(index >= 0.0 && index < frames && std::floor(index) == index);
    });
    if (bad != indices.end()) {
        badIndex = *bad;
        return false;
    }
    for (double index : indices)
        m_discarded[static_cast<std::size_t>(index)] = true;
    return true;
}

std::size_t FrameSelection::keptCount() const
{
    return static_cast<std::size_t>(std::count(m_discarded.begin(), m_discarded.end(), false));
}

} // namespace zarvi
