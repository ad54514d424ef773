#pragma once

#include "framework/Feedback.h"

namespace zarvi {

/// Lets a kernel that reports 0 to 100 fill only part of its caller's progress bar,
/// for instance the isosbestic half of a stage that treats two signals. Forwards
/// labels and the cancel question unchanged. Lives on the stack of the worker thread
/// that runs the computation; the wrapped Feedback may be null.
class SubrangeFeedback : public Feedback
{
public:
    SubrangeFeedback(Feedback* parent, int from, int to) : m_parent(parent), m_from(from), m_to(to) {}

    bool isCanceled() const override { return m_parent && m_parent->isCanceled(); }
    void setProgress(int percent) override
    {
        if (m_parent)
            m_parent->setProgress(m_from + (m_to - m_from) * percent / 100);
    }
    void setLabel(const QString& label) override
    {
        if (m_parent)
            m_parent->setLabel(label);
    }

private:
    Feedback* m_parent;
    int m_from;
    int m_to;
};

} // namespace zarvi
