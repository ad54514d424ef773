#pragma once

#include "analysis/operations/perievents/PerieventResultFile.h"

#include <QWidget>

class QCustomPlot;
class QLabel;
class QTabWidget;
class QTableWidget;
class QToolButton;

namespace zarvi {

class PerieventHeatMap;
class PerieventTracePlot;

/// A saved perievent result on screen: the heat map of the trials, the mean ± SEM
/// trace and the table of statistics, with buttons that export the plot shown as a
/// figure (FigureExportDialog) and the matrix and statistics to .csv. It keeps the result
/// in memory and reads the file only in load(). GUI thread.
class PerieventResultView : public QWidget
{
    Q_OBJECT

public:
    explicit PerieventResultView(QWidget* parent = nullptr);

    /// Reads the result at `path` (the matrix or its group) under the file's access
    /// lock, without waiting; false with `error` set when busy or not a result.
    bool load(const QString& filepath, const QString& path, QString& error);
    void setResult(StoredPerieventResult result);
    const StoredPerieventResult& result() const { return m_result; }

    /// Saves the plot of the current tab (the heat map when the table is shown) as a
    /// figure with the default options of FigureExport, in the format of the extension of
    /// `path` (PNG when it names none); false when it cannot be written.
    bool saveImage(const QString& path);
    /// The plot of the current tab: the heat map when the table is shown.
    QCustomPlot* currentPlot() const;
    /// The result's title, proposed as the figure's.
    QString figureTitle() const;
    /// Writes the matrix and the statistics as PerieventExport does.
    QString exportCsv(const QString& path, QStringList& written);

    PerieventHeatMap* heatMap() const { return m_heatMap; }
    PerieventTracePlot* tracePlot() const { return m_traces; }
    QTableWidget* statisticsTable() const { return m_table; }
    QTabWidget* tabs() const { return m_tabs; }

private:
    void fillTable();
    void onExportClicked();

    StoredPerieventResult m_result;
    QLabel* m_title;
    QToolButton* m_exportFigure;
    QToolButton* m_export;
    QTabWidget* m_tabs;
    PerieventHeatMap* m_heatMap;
    PerieventTracePlot* m_traces;
    QTableWidget* m_table;
};

} // namespace zarvi
