#pragma once

#include <QWidget>

#include <span>
#include <vector>

class QCustomPlot;
class QLabel;

namespace zarvi {

/// The preview of one perievent chunk in the parameter view (`w_signal`): the chunk
/// against its time relative to the event, a line at the event and the statistic time
/// frames shaded, or a note when there is nothing to show. GUI thread.
class PerieventPreview : public QWidget
{
    Q_OBJECT

public:
    explicit PerieventPreview(QWidget* parent = nullptr);

    /// Shows a chunk; `frames` are the statistic time frames [start, end].
    void showChunk(std::span<const double> time, std::span<const double> values,
                   const std::vector<std::pair<double, double>>& frames);
    /// Clears the plot and shows `note` instead ("Select signal chunk for preview.").
    void showNote(const QString& note);

    int shownPoints() const;
    QString note() const;
    QCustomPlot* plot() const { return m_plot; }

private:
    QCustomPlot* m_plot;
    QLabel* m_note;
};

} // namespace zarvi
