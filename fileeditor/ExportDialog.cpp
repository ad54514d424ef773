#include "fileeditor/ExportDialog.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "datafile/DataFileTree.h"
#include "definitions/ExportDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;
using ExportTexts = ExportDefinitions;

constexpr int indexRole = Qt::UserRole;

QString suffixOf(ExportDialog::Format format)
{
    switch (format) {
    case ExportDialog::Xlsx:
        return QStringLiteral("xlsx");
    case ExportDialog::Tiff:
        return QStringLiteral("tif");
    case ExportDialog::Csv:
        break;
    }
    return QStringLiteral("csv");
}

QString kindText(ExportKind kind)
{
    switch (kind) {
    case ExportKind::Events:
        return ExportTexts::eventsKindText();
    case ExportKind::Matrix:
        return ExportTexts::matrixKindText();
    case ExportKind::ImageStack:
        return ExportTexts::imageStackKindText();
    case ExportKind::Coordinates:
        return ExportTexts::coordinatesKindText();
    case ExportKind::Signal:
        break;
    }
    return ExportTexts::signalKindText();
}

/// path with its suffix replaced by (or, without one, extended with) suffix.
QString withSuffix(const QString& path, const QString& suffix)
{
    const QFileInfo info(path);
    const QString base = info.suffix().isEmpty() ? path : path.left(path.size() - info.suffix().size() - 1);
    return base + QLatin1Char('.') + suffix;
}

} // namespace

ExportDialog::ExportDialog(const QString& file, const QStringList& selectedPaths, QWidget* parent)
    : QDialog(parent), m_file(file)
{
    setWindowTitle(ExportTexts::exportWindowTitle());
    // Wide enough to show a whole file path.
    setMinimumWidth(560);
    buildWidgets();
    const QFileInfo info(file);
    m_output->setText(info.absoluteDir().filePath(info.completeBaseName() + QStringLiteral(".csv")));
    fillDatasets(selectedPaths);
}

QString ExportDialog::run(QWidget* parent, const QString& file, const QStringList& selectedPaths)
{
    ExportDialog dialog(file, selectedPaths, parent);
    dialog.exec();
    return dialog.exportedFile();
}

void ExportDialog::buildWidgets()
{
    auto* layout = new QVBoxLayout(this);
    auto* fileLabel = new QLabel(QStringLiteral("<b>%1</b>").arg(m_file.toHtmlEscaped()), this);
    fileLabel->setObjectName(QStringLiteral("lb_file"));
    layout->addWidget(fileLabel);
    layout->addWidget(new QLabel(ExportTexts::datasetsLabel(), this));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lw_datasets"));
    layout->addWidget(m_list);

    auto* form = new QFormLayout;
    m_format = new QComboBox(this);
    m_format->setObjectName(QStringLiteral("cb_format"));
    m_format->addItems({QStringLiteral(".csv"), QStringLiteral(".xlsx"), QStringLiteral(".tif")});
    form->addRow(ExportTexts::formatLabel(), m_format);
    auto* outputRow = new QHBoxLayout;
    m_output = new QLineEdit(this);
    m_output->setObjectName(QStringLiteral("le_output"));
    auto* browse = new QToolButton(this);
    browse->setObjectName(QStringLiteral("tb_browseOutput"));
    browse->setText(Texts::browseText());
    outputRow->addWidget(m_output);
    outputRow->addWidget(browse);
    form->addRow(ExportTexts::outputLabel(), outputRow);
    layout->addLayout(form);

    m_frames = new QGroupBox(ExportTexts::framesTitle(), this);
    m_frames->setObjectName(QStringLiteral("gb_frames"));
    auto* framesForm = new QFormLayout(m_frames);
    m_firstFrame = new QSpinBox(m_frames);
    m_firstFrame->setObjectName(QStringLiteral("sb_firstFrame"));
    m_lastFrame = new QSpinBox(m_frames);
    m_lastFrame->setObjectName(QStringLiteral("sb_lastFrame"));
    framesForm->addRow(ExportTexts::firstFrameLabel(), m_firstFrame);
    framesForm->addRow(ExportTexts::lastFrameLabel(), m_lastFrame);
    m_frames->setEnabled(false);
    layout->addWidget(m_frames);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* exportButton = new QPushButton(ExportTexts::exportButtonText(), this);
    exportButton->setObjectName(QStringLiteral("pb_export"));
    auto* closeButton = new QPushButton(Texts::closeButtonText(), this);
    closeButton->setObjectName(QStringLiteral("pb_close"));
    // No default button: Enter in a path field must not start writing a file.
    for (QPushButton* button : {exportButton, closeButton})
        button->setAutoDefault(false);
    buttons->addWidget(exportButton);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);

    connect(m_list, &QListWidget::itemChanged, this, &ExportDialog::onSelectionChanged);
    connect(m_format, &QComboBox::currentIndexChanged, this, &ExportDialog::onFormatChanged);
    connect(browse, &QToolButton::clicked, this, &ExportDialog::browseOutput);
    connect(exportButton, &QPushButton::clicked, this, &ExportDialog::exportData);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
}

void ExportDialog::fillDatasets(const QStringList& selectedPaths)
{
    QString error;
    m_datasets = DataExporter::exportableDatasets(m_file, error);
    if (!error.isEmpty()) {
        auto* problem = new QLabel(error, this);
        problem->setObjectName(QStringLiteral("lb_problem"));
        problem->setWordWrap(true);
        static_cast<QVBoxLayout*>(layout())->insertWidget(1, problem);
    }
    const QSignalBlocker blocker(m_list);
    for (std::size_t i = 0; i < m_datasets.size(); ++i) {
        const ExportableDataset& dataset = m_datasets[i];
        auto* item = new QListWidgetItem(dataset.path, m_list);
        item->setToolTip(kindText(dataset.kind) + QLatin1Char(' ') +
                         DataFileTree::shapeText(dataset.dimensions));
        item->setData(indexRole, static_cast<int>(i));
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        const QString group = dataset.path.left(dataset.path.lastIndexOf(QLatin1Char('/')));
        const bool selected =
            selectedPaths.contains(dataset.path) ||
            ((dataset.kind == ExportKind::Signal || dataset.kind == ExportKind::ImageStack) &&
             selectedPaths.contains(group));
        item->setCheckState(selected ? Qt::Checked : Qt::Unchecked);
    }
    onSelectionChanged();
}

std::vector<ExportableDataset> ExportDialog::checkedDatasets() const
{
    std::vector<ExportableDataset> checked;
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem* item = m_list->item(row);
        if (item->checkState() == Qt::Checked)
            checked.push_back(m_datasets[static_cast<std::size_t>(item->data(indexRole).toInt())]);
    }
    return checked;
}

void ExportDialog::onSelectionChanged()
{
    const std::vector<ExportableDataset> checked = checkedDatasets();
    const auto stack = std::find_if(checked.begin(), checked.end(), [](const ExportableDataset& d) {
        return d.kind == ExportKind::ImageStack;
    });
    m_frames->setEnabled(stack != checked.end());
    if (stack != checked.end()) {
        const int frames = static_cast<int>(std::min<hsize_t>(stack->dimensions[2], 1 << 30));
        m_firstFrame->setRange(1, std::max(1, frames));
        m_lastFrame->setRange(1, std::max(1, frames));
        m_firstFrame->setValue(1);
        m_lastFrame->setValue(frames);
        m_format->setCurrentIndex(Tiff);
    } else if (!checked.empty() && m_format->currentIndex() == Tiff) {
        m_format->setCurrentIndex(Csv);
    }
}

void ExportDialog::onFormatChanged()
{
    const QString output = m_output->text().trimmed();
    if (!output.isEmpty())
        m_output->setText(withSuffix(output, suffixOf(static_cast<Format>(m_format->currentIndex()))));
}

void ExportDialog::browseOutput()
{
    static const QStringList filters{ExportTexts::csvFilter(), ExportTexts::xlsxFilter(),
                                     ExportTexts::tiffExportFilter()};
    const QString path = QFileDialog::getSaveFileName(this, ExportTexts::outputLabel(), m_output->text(),
                                                      filters[m_format->currentIndex()]);
    if (!path.isEmpty())
        m_output->setText(withSuffix(path, suffixOf(static_cast<Format>(m_format->currentIndex()))));
}

std::optional<DataExportConfig> ExportDialog::buildConfig(QString& problem) const
{
    problem.clear();
    const std::vector<ExportableDataset> checked = checkedDatasets();
    const QString output = m_output->text().trimmed();
    if (checked.empty()) {
        problem = ExportTexts::exportNothingMessage();
        return std::nullopt;
    }
    if (output.isEmpty()) {
        problem = ExportTexts::chooseOutputMessage();
        return std::nullopt;
    }
    DataExportConfig config;
    config.filepath = m_file;
    for (const ExportableDataset& dataset : checked)
        config.datapaths << dataset.path;
    const auto format = static_cast<Format>(m_format->currentIndex());
    config.outputPath = withSuffix(output, suffixOf(format));
    if (format == Tiff && m_frames->isEnabled()) {
        if (m_lastFrame->value() < m_firstFrame->value()) {
            problem = ExportTexts::exportFrameRangeMessage()
                          .arg(m_firstFrame->value())
                          .arg(m_lastFrame->value())
                          .arg(m_lastFrame->maximum());
            return std::nullopt;
        }
        config.firstFrame = static_cast<std::size_t>(m_firstFrame->value() - 1);
        config.frameCount = static_cast<std::size_t>(m_lastFrame->value() - m_firstFrame->value() + 1);
    }
    return config;
}

bool ExportDialog::exportData()
{
    QString problem;
    const std::optional<DataExportConfig> config = buildConfig(problem);
    if (!config) {
        m_present(ExportTexts::exportWindowTitle(), problem, QMessageBox::Warning);
        return false;
    }
    DataExportResult result;
    BackgroundJob job(ZarviMainDefinitions::progressTitle());
    job.exec(ExportTexts::exportingLabel().arg(config->outputPath),
             [&](Feedback& feedback) { result = DataExporter::run(*config, &feedback); });
    if (result.canceled)
        return false;
    if (!result.ok()) {
        m_present(ZarviMainDefinitions::errorOperationTitle(), result.error, QMessageBox::Critical);
        return false;
    }
    m_present(ExportTexts::exportedTitle(), ExportTexts::exportedMessage().arg(result.outputPath),
              QMessageBox::Information);
    m_exportedFile = result.outputPath;
    accept();
    return true;
}

} // namespace zarvi
