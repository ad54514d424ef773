#pragma once

#include <QStringList>

#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// An event array as the analyses see it: one row per event with its
/// onset time, an optional offset time (seconds) and a name. Names default to
/// "Event%1" filled with the 1-based number of the event in the array it was loaded
/// from, and travel with their rows through selection and dropping, so a kept row
/// still says which trial it was. A value type, used on any one thread at a time.
class EventArray
{
public:
    EventArray() = default;
    /// `offsets` is empty for an array of onsets only; empty `names` get the defaults.
    explicit EventArray(std::vector<double> onsets, std::vector<double> offsets = {}, QStringList names = {});

    std::size_t size() const { return m_onsets.size(); }
    bool isEmpty() const { return m_onsets.empty(); }
    bool hasOffsets() const { return !m_offsets.empty(); }
    /// Offsets, when present, and names pair one to one with the onsets.
    bool isValid() const;

    const std::vector<double>& onsets() const { return m_onsets; }
    const std::vector<double>& offsets() const { return m_offsets; }
    const QStringList& names() const { return m_names; }

    /// The rows at `indices` (each < size()), in that order, with their names.
    EventArray subset(std::span<const std::size_t> indices) const;

private:
    std::vector<double> m_onsets;
    std::vector<double> m_offsets;
    QStringList m_names;
};

} // namespace zarvi
