#include "events/EventArray.h"

#include "definitions/FileDefinitions.h"

namespace zarvi {

EventArray::EventArray(std::vector<double> onsets, std::vector<double> offsets, QStringList names)
    : m_onsets(std::move(onsets)), m_offsets(std::move(offsets)), m_names(std::move(names))
{
    if (m_names.isEmpty()) {
        m_names.reserve(static_cast<qsizetype>(m_onsets.size()));
        for (std::size_t i = 0; i < m_onsets.size(); ++i)
            m_names.append(FileDefinitions::EventPattern.arg(i + 1));
    }
}

bool EventArray::isValid() const
{
    return (m_offsets.empty() || m_offsets.size() == m_onsets.size()) &&
           static_cast<std::size_t>(m_names.size()) == m_onsets.size();
}

EventArray EventArray::subset(std::span<const std::size_t> indices) const
{
    EventArray picked;
    picked.m_onsets.reserve(indices.size());
    picked.m_names.reserve(static_cast<qsizetype>(indices.size()));
    if (hasOffsets())
        picked.m_offsets.reserve(indices.size());
    for (const std::size_t i : indices) {
        picked.m_onsets.push_back(m_onsets[i]);
        if (hasOffsets())
            picked.m_offsets.push_back(m_offsets[i]);
        picked.m_names.append(m_names[static_cast<qsizetype>(i)]);
    }
    return picked;
}

} // namespace zarvi
