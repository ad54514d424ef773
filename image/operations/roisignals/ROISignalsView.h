#pragma once

#include "image/ImageOperationView.h"
#include "roi/RoiShape.h"

#include <functional>
#include <memory>
#include <vector>

class QComboBox;
class QLabel;
class QListWidget;
class QToolButton;

namespace zarvi {

class AbstractROI;
class BackgroundJob;
class CellsHandler;
class HDF5Writer_V6;

/// The "ROI Signals" parameters: cells drawn on the preview's input frame with a
/// CellsHandler (in the shape chosen under "Draw Cells"), and the list of the stack's
/// ROIs (lw_rois) whose checked entries are `ROINames`. The cell ROIs stored with the
/// stack are read when the datasets are set and drawn once the first frame is shown;
/// cells drawn or imported from ImageJ files join the list as "(not saved)" until "Save
/// Cells" writes them into the file. A drawn cell numbered n is saved as "ROI<n>" (the
/// file's next free "ROI<k>" if that name is taken) and then labelled so; a stored
/// "ROI<k>" is shown as cell k; imported cells keep their file names. Saving and removing
/// take the file's lock on a BackgroundJob, never on the GUI thread. Run is refused while
/// cells are unsaved, when the stack has no cells or when none is checked. GUI thread.
class ROISignalsView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit ROISignalsView(QWidget* parent = nullptr);
    ~ROISignalsView() override;

    CellsHandler* cellsHandler() const { return m_cells; }
    /// Adds the ROIs of an ImageJ `.roi` file or ROI set as unsaved cells; false after
    /// showing why when the file cannot be read or an ROI cannot be shown.
    bool importRois(const QString& path);
    /// Writes the unsaved cells into the file, in the background.
    void saveCells();
    /// Removes the list's current ROI: from the file (in the background) when saved.
    void removeCurrentRoi();

signals:
    /// A save or removal has ended and the list shows the file's ROIs.
    void storeUpdated(bool succeeded);

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;

private:
    struct StoreResult;

    /// Draws the stored cells, once the frame (and so the image size) is known.
    void showStoredCells();
    void rebuildList();
    /// The cells on the view that the file does not hold yet.
    std::vector<std::shared_ptr<AbstractROI>> unsavedCells() const;
    const AbstractROI* cellNamed(const QString& name) const;
    /// Runs `work` on the file, opened read-write under its lock, on the job's thread; then,
    /// on the GUI thread, `done` when it succeeded (a message otherwise), and the list is rebuilt.
    void runStoreJob(std::function<bool(HDF5Writer_V6&, StoreResult&)> work,
                     std::function<void(const StoreResult&)> done);

    QComboBox* cb_cellShape;
    QListWidget* lw_rois;
    QLabel* lb_roisValidation;
    QToolButton* tb_saveCells;
    QToolButton* tb_removeRoi;
    QToolButton* tb_importRois;
    CellsHandler* m_cells;
    std::unique_ptr<BackgroundJob> m_job;
    std::function<void()> m_afterJob;
    /// The names of every ROI stored with the stack, and its cells (area shapes).
    QStringList m_storedNames;
    std::vector<RoiShape> m_storedCells;
    bool m_cellsShown = false;
};

} // namespace zarvi
