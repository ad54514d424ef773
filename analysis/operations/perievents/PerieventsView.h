#pragma once

#include "analysis/operations/perievents/PerieventChunkPreview.h"
#include "events/EventArrayFile.h"
#include "framework/AbstractOperationView.h"

#include <memory>
#include <vector>

class QComboBox;
class QLabel;
class QListWidget;
class QTimer;

namespace zarvi {

class BackgroundJob;
class PerieventOptionsPanel;
class PerieventPreview;
class PerieventSideBox;

/// Parameters of "Perievents", in the analysis dialog: the event array and its side,
/// the onset and offset time frames with their statistic tables, the statistics, the
/// baseline alignment, the selection of events and the resampling, with the usable
/// event range and a preview of one chunk computed by the perievent kernel itself.
/// The file's event arrays, time-period arrays and the signal's extent are read when
/// the view is first shown (loadFileData()), each read a short one under the file's
/// access lock; the optional stages live in a PerieventOptionsPanel. GUI thread.
class PerieventsView : public AbstractOperationView
{
    Q_OBJECT

public:
    explicit PerieventsView(QWidget* parent = nullptr);
    ~PerieventsView() override;

    /// Reads the event arrays, time periods and signal extent of the file; false when
    /// the file is busy or unreadable (the range label says why).
    bool loadFileData();
    /// Recomputes the preview of the chunk chosen in `cb_previewEvent`.
    void updatePreview();
    /// The parameter map as the widgets stand, without checking them.
    QVariantMap currentParameters() const;

    PerieventSideBox* onsetBox() const { return m_onset; }
    PerieventSideBox* offsetBox() const { return m_offset; }
    PerieventPreview* preview() const { return m_preview; }
    /// Computes the preview off the GUI thread; its finished() says when the plot has it.
    BackgroundJob* previewJob() const { return m_previewJob.get(); }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void showEvent(QShowEvent* event) override;
    /// Once shown, a new choice of signal is read at once (the range and the preview follow it).
    void datasetsChanged() override;

private:
    QWidget* buildEventRows();
    QWidget* buildStatistics();
    void onEventChanged();
    void updateEnabled();
    /// Sets the fields to the last run's parameters; the event and its side are chosen
    /// when the file's arrays are listed.
    void restoreRemembered();
    void updateRange();
    /// Shows the chunk the preview job computed (on the GUI thread, once it finished).
    void showPreviewChunk(bool canceled);
    bool takesOnset() const;
    bool takesOffset() const;
    const StoredArray* currentEvent() const;

    std::vector<StoredArray> m_events;
    bool m_loaded = false;
    QString m_wantedEvent;
    QString m_wantedSide;
    bool m_hasExtent = false;
    double m_firstTime = 0.0;
    double m_lastTime = 0.0;

    QComboBox* m_event;
    QLabel* m_onoffLabel;
    QComboBox* m_onoff;
    PerieventSideBox* m_onset;
    PerieventSideBox* m_offset;
    QListWidget* m_statistics;
    PerieventOptionsPanel* m_options;
    QLabel* m_range;
    QComboBox* m_previewEvent;
    PerieventPreview* m_preview;
    QTimer* m_previewTimer;
    std::unique_ptr<BackgroundJob> m_previewJob;
    /// The chunk being computed, handed over when the job finishes.
    std::shared_ptr<PerieventChunkPreview::Result> m_previewChunk;
};

} // namespace zarvi
