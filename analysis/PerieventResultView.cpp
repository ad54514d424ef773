#include "analysis/PerieventResultView.h"

#include "analysis/PerieventExport.h"
#include "analysis/PerieventHeatMap.h"
#include "analysis/PerieventTracePlot.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FigureDefinitions.h"
#include "framework/FigureExport.h"
#include "framework/FigureExportDialog.h"
#include "framework/LockedFileRead.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <qcustomplot.h>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

QToolButton* toolButton(QWidget* parent, const char* objectName, const QString& text, const QString& tip)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setText(text);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

PerieventResultView::PerieventResultView(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("w_perieventResult"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    auto* header = new QHBoxLayout;
    m_title = new QLabel(this);
    m_title->setObjectName(QStringLiteral("lb_title"));
    m_exportFigure = toolButton(this, "tb_exportFigure", FigureDefinitions::exportFigureLabel(),
                                FigureDefinitions::exportFigureTooltip());
    m_export = toolButton(this, "tb_exportCsv", D::exportCsvLabel(), D::exportCsvTooltip());
    header->addWidget(m_title, 1);
    header->addWidget(m_exportFigure);
    header->addWidget(m_export);
    layout->addLayout(header);

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tw_result"));
    m_heatMap = new PerieventHeatMap(m_tabs);
    m_traces = new PerieventTracePlot(m_tabs);
    m_table = new QTableWidget(m_tabs);
    m_table->setObjectName(QStringLiteral("tw_statistics"));
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tabs->addTab(m_heatMap, D::heatMapTitle());
    m_tabs->addTab(m_traces, D::tracesTitle());
    m_tabs->addTab(m_table, D::statisticsTitle());
    layout->addWidget(m_tabs, 1);

    connect(m_exportFigure, &QToolButton::clicked, this,
            [this] { FigureExportDialog::exportPlot(currentPlot(), figureTitle(), this); });
    connect(m_export, &QToolButton::clicked, this, &PerieventResultView::onExportClicked);
}

bool PerieventResultView::load(const QString& filepath, const QString& path, QString& error)
{
    StoredPerieventResult result;
    {
        LockedFileRead read(filepath);
        if (!read.isOpen()) {
            error = read.error();
            return false;
        }
        if (!PerieventResultFile::read(read.reader(), path, result, error)) {
            error = D::cannotReadResultMessage().arg(path, error);
            return false;
        }
    }
    setResult(std::move(result));
    return true;
}

void PerieventResultView::setResult(StoredPerieventResult result)
{
    m_result = std::move(result);
    m_title->setText(m_result.title.isEmpty() ? m_result.path : m_result.title);
    m_title->setToolTip(m_result.path);
    m_heatMap->setResult(m_result);
    m_traces->setResult(m_result);
    fillTable();
}

void PerieventResultView::fillTable()
{
    // One row per event; one column per statistic and time frame: "AUC Baseline", ...
    QStringList headers;
    for (const StoredPerieventResult::Statistic& statistic : m_result.statistics)
        for (const QString& frame : statistic.frameNames)
            headers << D::TwoPartNamePattern.arg(statistic.name, frame);
    m_table->clear();
    m_table->setRowCount(static_cast<int>(m_result.rowNames.size()));
    m_table->setColumnCount(static_cast<int>(headers.size()));
    m_table->setHorizontalHeaderLabels(headers);
    m_table->setVerticalHeaderLabels(m_result.rowNames);
    int column = 0;
    for (const StoredPerieventResult::Statistic& statistic : m_result.statistics) {
        for (arma::uword frame = 0; frame < statistic.values.n_cols; ++frame, ++column)
            for (arma::uword row = 0; row < statistic.values.n_rows; ++row)
                m_table->setItem(static_cast<int>(row), column,
                                 new QTableWidgetItem(QString::number(statistic.values(row, frame), 'g', 6)));
    }
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

QCustomPlot* PerieventResultView::currentPlot() const
{
    return m_tabs->currentWidget() == m_traces ? m_traces->plot() : m_heatMap->plot();
}

QString PerieventResultView::figureTitle() const
{
    return m_title->text();
}

bool PerieventResultView::saveImage(const QString& path)
{
    QCustomPlot* plot = currentPlot();
    FigureExport::Options options;
    options.path = path;
    options.format = FigureExport::formatOf(path, FigureExport::Format::Png);
    options.title = figureTitle();
    options.xLabel = plot->xAxis->label();
    options.yLabel = plot->yAxis->label();
    QString error;
    return FigureExport::write(plot, options, error);
}

QString PerieventResultView::exportCsv(const QString& path, QStringList& written)
{
    return PerieventExport::write(m_result, path, written);
}

void PerieventResultView::onExportClicked()
{
    const QString path = QFileDialog::getSaveFileName(this, D::exportCsvLabel(), QString(), D::csvFilter());
    if (path.isEmpty())
        return;
    QStringList written;
    const QString error = exportCsv(path, written);
    if (!error.isEmpty())
        QMessageBox::warning(this, D::exportCsvLabel(), error);
}

} // namespace zarvi
