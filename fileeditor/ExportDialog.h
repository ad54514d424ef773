#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

#include "fileeditor/DataExporter.h"
#include "framework/BackgroundJob.h"

class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QSpinBox;

namespace zarvi {

/// The Export window of the main window's actionExport / tb_export: the exportable
/// datasets of a data file in a checkable list (those selected in the main window checked),
/// the format (.csv, .xlsx, .tif), the output file and, for an image stack, the range of
/// frames. buildConfig() turns the widgets into the same configuration the command line
/// builds; exportData() runs it through a BackgroundJob and shows the outcome. GUI thread.
class ExportDialog : public QDialog
{
    Q_OBJECT

public:
    /// Entries of cb_format, in order.
    enum Format
    {
        Csv,
        Xlsx,
        Tiff
    };

    ExportDialog(const QString& file, const QStringList& selectedPaths, QWidget* parent = nullptr);

    /// Shows the dialog modally; returns the file written, empty when nothing was exported.
    static QString run(QWidget* parent, const QString& file, const QStringList& selectedPaths);

    /// The export the widgets describe; empty, with problem set, when something is missing.
    std::optional<DataExportConfig> buildConfig(QString& problem) const;
    /// Validates, exports on a worker thread with a progress dialog, and shows the
    /// outcome. True when a file was written; the dialog then closes.
    bool exportData();
    QString exportedFile() const { return m_exportedFile; }
    void setMessagePresenter(MessagePresenter presenter) { m_present = std::move(presenter); }

private:
    void buildWidgets();
    void fillDatasets(const QStringList& selectedPaths);
    void onSelectionChanged();
    void onFormatChanged();
    void browseOutput();
    std::vector<ExportableDataset> checkedDatasets() const;

    QString m_file;
    std::vector<ExportableDataset> m_datasets;
    QListWidget* m_list = nullptr;
    QComboBox* m_format = nullptr;
    QLineEdit* m_output = nullptr;
    QGroupBox* m_frames = nullptr;
    QSpinBox* m_firstFrame = nullptr;
    QSpinBox* m_lastFrame = nullptr;
    QString m_exportedFile;
    MessagePresenter m_present = BackgroundJob::showMessage;
};

} // namespace zarvi
