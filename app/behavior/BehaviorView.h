#pragma once

#include "behavior/BehaviorRegions.h"
#include "behavior/CoordinatesDataset.h"
#include "behavior/VideoLink.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QComboBox;
class QMenu;
class QToolButton;

namespace zarvi {

class BehaviorPathPlots;
class BehaviorPipeline;
class BehaviorRegionsPanel;
class BehaviorSignalsPanel;
class BehaviorVideoPanel;
class OperationDialog;

/// The behaviour page of a data file (`tb_behavior`): one of the file's linked videos
/// ("Video"), with its frame slider and playback, and below it the recording's signals
/// with a cursor at the video's time; a click on the signals moves the video to the frame
/// nearest that time. The tracked coordinates chosen ("Coordinates") are drawn over the
/// video as the current position and a trail, and beside it as a trajectory and an
/// occupancy heat map. The arena, zones and calibration drawn on the video are stored on
/// its link as soon as they change, where the "Measures" operation finds them; the
/// behaviour operations open from the buttons beside. The page reads the file only
/// briefly, under its lock, and never keeps it open. GUI thread.
class BehaviorView : public QWidget
{
    Q_OBJECT

public:
    /// A signal the page can draw, with the levels it is matched by.
    struct SignalEntry
    {
        QString path;
        QString name;
        QString category;
        QString series;
    };

    explicit BehaviorView(QWidget* parent = nullptr);

    /// Reads the file's video links, coordinates and signals, keeping the choices that
    /// still exist (after a run, say); the first video otherwise.
    void setFile(const QString& filepath);
    QString filepath() const { return m_filepath; }

    QComboBox* videoBox() const { return m_video; }
    QComboBox* coordinatesBox() const { return m_coordinates; }
    QToolButton* signalsButton() const { return m_signalsButton; }
    BehaviorVideoPanel* videoPanel() const { return m_videoPanel; }
    BehaviorSignalsPanel* signalsPanel() const { return m_signalsPanel; }
    BehaviorRegionsPanel* regionsPanel() const { return m_regionsPanel; }
    BehaviorPathPlots* pathPlots() const { return m_pathPlots; }
    BehaviorPipeline* pipeline() const { return m_pipeline; }
    const TrackedPath& trackedPath() const { return m_path; }
    /// The signals offered, in the order of the "Signals" menu.
    const std::vector<SignalEntry>& signalEntries() const { return m_signals; }
    /// Shows or hides the signal at `index` of signalEntries().
    void setSignalShown(int index, bool shown);

    /// Opens a behaviour operation on its data, as its button does; null when the page
    /// refused (the reason is shown) or the operation has no view.
    OperationDialog* openOperation(const QString& name);
    /// Replaces the message box (rich text) that says why an operation cannot open.
    void setMessagePresenter(std::function<void(const QString&)> presenter)
    {
        m_present = std::move(presenter);
    }

signals:
    void sendStatusMessage(const QString& message);

private:
    void onVideoChosen(int index);
    void onVideoOpened(const QString& error);
    void onCoordinatesChosen(int index);
    void onFrameChanged(int frame, double seconds);
    void loadSignals();
    void chooseDefaultSignals();
    void saveRegions();
    const VideoLink* currentLink() const;

    QString m_filepath;
    /// The link of the video open, empty when none is.
    QString m_openedLink;
    QComboBox* m_video;
    QComboBox* m_coordinates;
    QToolButton* m_signalsButton;
    QMenu* m_signalsMenu;
    BehaviorVideoPanel* m_videoPanel;
    BehaviorSignalsPanel* m_signalsPanel;
    BehaviorRegionsPanel* m_regionsPanel;
    BehaviorPathPlots* m_pathPlots;
    BehaviorPipeline* m_pipeline;
    std::vector<VideoLink> m_links;
    QStringList m_coordinatesPaths;
    std::vector<SignalEntry> m_signals;
    TrackedPath m_path;
    /// The regions stored on the video being opened, shown once its size is known.
    BehaviorRegions m_storedRegions;
    std::function<void(const QString&)> m_present;
};

} // namespace zarvi
