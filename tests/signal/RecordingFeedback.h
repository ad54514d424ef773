#pragma once

#include "datafile/Feedback.h"

#include <QStringList>

#include <limits>

namespace zarvi::test {

/// A Feedback that records labels, warnings and progress and answers "cancel" once it has
/// been asked a given number of times.
class RecordingFeedback : public Feedback
{
public:
    explicit RecordingFeedback(long long cancelAfterPolls = std::numeric_limits<long long>::max())
        : m_cancelAfter(cancelAfterPolls)
    {
    }

    bool isCanceled() const override { return ++m_polls > m_cancelAfter; }
    void setProgress(int percent) override { lastProgress = percent; }
    void setLabel(const QString& label) override { labels << label; }
    void warn(const QString& message) override { warnings << message; }

    long long polls() const { return m_polls; }

    QStringList labels;
    QStringList warnings;
    int lastProgress = -1;

private:
    long long m_cancelAfter;
    mutable long long m_polls = 0;
};

} // namespace zarvi::test
