#pragma once

#include "framework/FigureExport.h"

#include <QDialog>

#include <functional>

class QAction;
class QComboBox;
class QCustomPlot;
class QDoubleSpinBox;
class QFormLayout;
class QLineEdit;
class QSpinBox;

namespace zarvi {

/// Asks how a plot is saved as a figure (file and format, size, title, axis labels,
/// theme) and writes it when accepted, staying open with the reason when it cannot.
/// The format follows the extension of the file name; sizes are in pixels with a
/// resolution for PNG and in millimetres for SVG and PDF. The title and labels start
/// from the plot's; the rest is as the last export left it. GUI thread.
class FigureExportDialog : public QDialog
{
    Q_OBJECT

public:
    /// `title` is the plot's own name, proposed as the figure's title and file name.
    FigureExportDialog(QCustomPlot* plot, const QString& title, QWidget* parent = nullptr);

    FigureExport::Options options() const;
    void setPath(const QString& path);

    /// Opens the dialog over `parent` for `plot`; the figure is written if accepted.
    static void exportPlot(QCustomPlot* plot, const QString& title, QWidget* parent);
    /// Puts "Export Figure..." in `plot`'s context menu; `title` gives the plot's name when
    /// the user asks. Returns the action, owned by the plot.
    static QAction* offerOn(QCustomPlot* plot, std::function<QString()> title);

public slots:
    void accept() override;

private:
    FigureExport::Format format() const;
    void onBrowse();
    void onFormatChanged();
    void remember() const;

    QCustomPlot* m_plot;
    QFormLayout* m_form;
    QLineEdit* m_path;
    QComboBox* m_format;
    QSpinBox* m_pixelWidth;
    QSpinBox* m_pixelHeight;
    QSpinBox* m_dpi;
    QDoubleSpinBox* m_mmWidth;
    QDoubleSpinBox* m_mmHeight;
    QLineEdit* m_title;
    QLineEdit* m_xLabel;
    QLineEdit* m_yLabel;
    QComboBox* m_theme;
};

} // namespace zarvi
