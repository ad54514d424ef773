#pragma once

#include <QDialog>
#include <QString>

#include <optional>

#include "fileeditor/FileConversion.h"
#include "framework/BackgroundJob.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace zarvi {

class CsvColumnPreview;
class RecordingSourcePanel;

/// The Convert window of the main window's actionConvert / tb_convert: the kind of
/// source (TIFF file or folder, video, .csv table, version-5 file, recording of an
/// acquisition system), its path, the device,
/// sensor and series names, the frame times (rate or timestamps file), the time and event
/// columns of a table, and the data file to convert into (an existing one or a new one).
/// buildRequest() turns the widgets into the same request the command line builds;
/// convert() runs it through a BackgroundJob and shows the outcome. GUI thread.
class ConvertDialog : public QDialog
{
    Q_OBJECT

public:
    /// Kinds of source, in the order of the cb_sourceType entries.
    enum SourceType
    {
        TiffFile,
        TiffFolder,
        Video,
        Spreadsheet,
        Version5,
        Recording
    };

    /// currentFile, when not empty, is offered as the existing file to convert into.
    explicit ConvertDialog(const QString& currentFile, QWidget* parent = nullptr);

    /// Shows the dialog modally; returns the data file that was written into (for the main
    /// window to open or re-read), empty when nothing was converted.
    static QString run(QWidget* parent, const QString& currentFile);

    /// The conversion the widgets describe; empty, with problem set, when a field is
    /// missing or invalid.
    std::optional<ConversionRequest> buildRequest(QString& problem) const;
    /// Validates, converts on a worker thread with a progress dialog, and shows the
    /// outcome. True when something was converted; the dialog then closes.
    bool convert();
    /// The data file of the last successful conversion.
    QString convertedFile() const { return m_convertedFile; }
    void setMessagePresenter(MessagePresenter presenter) { m_present = std::move(presenter); }

private:
    void buildWidgets();
    void updateVisibility();
    void browseSource();
    /// Shows in the preview the roles the column fields give.
    void updateColumnRoles();
    /// Lists the sheets of a workbook source, shown only for one, and previews its columns.
    void updateSheets();
    /// Shows what a recording source holds; an empty device takes the format's name.
    void updateRecording();
    void updatePreview();
    void browseTimestamps();
    void browseTarget();
    SourceType sourceType() const;
    ConversionDestination destination() const;
    bool checkTarget(QString& problem) const;

    QComboBox* m_sourceType = nullptr;
    QLineEdit* m_source = nullptr;
    QGroupBox* m_names = nullptr;
    QLineEdit* m_device = nullptr;
    QLabel* m_sensorLabel = nullptr;
    QLineEdit* m_sensor = nullptr;
    QCheckBox* m_nextSeries = nullptr;
    QSpinBox* m_series = nullptr;
    QGroupBox* m_timing = nullptr;
    QRadioButton* m_useRate = nullptr;
    QDoubleSpinBox* m_frameRate = nullptr;
    QRadioButton* m_useTimestamps = nullptr;
    QLineEdit* m_timestamps = nullptr;
    QCheckBox* m_asStack = nullptr;
    QGroupBox* m_columns = nullptr;
    QLabel* m_sheetLabel = nullptr;
    QComboBox* m_sheet = nullptr;
    QSpinBox* m_timeColumn = nullptr;
    QComboBox* m_timeUnit = nullptr;
    QLineEdit* m_eventColumns = nullptr;
    QLineEdit* m_triggerColumns = nullptr;
    QLineEdit* m_signalUnit = nullptr;
    CsvColumnPreview* m_columnPreview = nullptr;
    RecordingSourcePanel* m_recording = nullptr;
    QRadioButton* m_existingFile = nullptr;
    QRadioButton* m_newFile = nullptr;
    QLineEdit* m_target = nullptr;
    QString m_convertedFile;
    MessagePresenter m_present = BackgroundJob::showMessage;
};

} // namespace zarvi
