#pragma once

#include "framework/AbstractOperationView.h"

#include <cstddef>

namespace zarvi {

/// Common base of the signal operation views: knows the sample rate of the first
/// selected signal, which the views check their frequencies and windows against
/// (each process checks every signal again). GUI thread.
class SignalOperationView : public AbstractOperationView
{
    Q_OBJECT

public:
    using AbstractOperationView::AbstractOperationView;

    /// Hz; 0 while unknown (no signal selected, or the file busy when the view was set up).
    double sampleRate() const { return m_sampleRate; }
    /// Samples of the first selected signal; 0 while unknown, as the sample rate.
    std::size_t sampleCount() const { return m_sampleCount; }

protected:
    /// Reads the sample rate and count; views that override it call it first.
    void datasetsChanged() override;

private:
    double m_sampleRate = 0.0;
    std::size_t m_sampleCount = 0;
};

} // namespace zarvi
