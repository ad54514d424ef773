#pragma once

#include <vector>

namespace zarvi {

/// Turns the samples of a digital line into pulses: a rising edge is an onset at the time
/// of the first high sample, a falling edge an offset at the time of the first low sample.
/// A line already high at the first sample starts a pulse there, and a pulse still high at
/// the last sample ends there, so every onset has its offset. Fed in time order, block by
/// block; holds only the edges. Plain value, used on the thread of the conversion.
class DigitalEdges
{
public:
    void add(bool high, double time)
    {
        if (high != m_high) {
            (high ? m_onsets : m_offsets).push_back(time);
            m_high = high;
        }
        m_last = time;
    }
    /// Ends a pulse still high at the last sample.
    void finish()
    {
        if (m_high)
            m_offsets.push_back(m_last);
        m_high = false;
    }

    const std::vector<double>& onsets() const { return m_onsets; }
    const std::vector<double>& offsets() const { return m_offsets; }

private:
    bool m_high = false;
    double m_last = 0.0;
    std::vector<double> m_onsets;
    std::vector<double> m_offsets;
};

} // namespace zarvi
