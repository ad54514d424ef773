#include "fileeditor/ConvertDialog.h"

#include "fileeditor/CsvColumnPreview.h"
#include "fileeditor/RecordingSourcePanel.h"
#include "fileeditor/XlsxSheetReader.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// A line edit with a "..." button beside it, in one row.
QHBoxLayout* pathRow(QLineEdit* edit, QToolButton* button)
{
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(button);
    return row;
}

QToolButton* browseButton(QWidget* parent, const QString& name)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setText(Texts::browseText());
    return button;
}

} // namespace

ConvertDialog::ConvertDialog(const QString& currentFile, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(Texts::convertWindowTitle());
    // Wide enough to show a whole file path.
    setMinimumWidth(560);
    buildWidgets();
    if (!currentFile.isEmpty()) {
        m_existingFile->setChecked(true);
        m_target->setText(currentFile);
    } else {
        m_newFile->setChecked(true);
    }
    updateVisibility();
}

QString ConvertDialog::run(QWidget* parent, const QString& currentFile)
{
    ConvertDialog dialog(currentFile, parent);
    dialog.exec();
    return dialog.convertedFile();
}

void ConvertDialog::buildWidgets()
{
    auto* layout = new QVBoxLayout(this);
    auto* sourceForm = new QFormLayout;
    m_sourceType = new QComboBox(this);
    m_sourceType->setObjectName(QStringLiteral("cb_sourceType"));
    m_sourceType->addItems({Texts::tiffFileSourceText(), Texts::tiffFolderSourceText(),
                            Texts::videoSourceText(), Texts::spreadsheetSourceText(),
                            Texts::version5SourceText(), Texts::recordingSourceText()});
    sourceForm->addRow(Texts::sourceTypeLabel(), m_sourceType);
    m_source = new QLineEdit(this);
    m_source->setObjectName(QStringLiteral("le_source"));
    QToolButton* browseSourceButton = browseButton(this, QStringLiteral("tb_browseSource"));
    sourceForm->addRow(Texts::sourceLabel(), pathRow(m_source, browseSourceButton));
    layout->addLayout(sourceForm);

    m_names = new QGroupBox(Texts::namesTitle(), this);
    m_names->setObjectName(QStringLiteral("gb_names"));
    auto* namesForm = new QFormLayout(m_names);
    m_device = new QLineEdit(m_names);
    m_device->setObjectName(QStringLiteral("le_device"));
    namesForm->addRow(Texts::deviceLabel(), m_device);
    m_sensorLabel = new QLabel(Texts::sensorLabel(), m_names);
    m_sensor = new QLineEdit(m_names);
    m_sensor->setObjectName(QStringLiteral("le_sensor"));
    namesForm->addRow(m_sensorLabel, m_sensor);
    auto* seriesRow = new QHBoxLayout;
    m_nextSeries = new QCheckBox(Texts::nextSeriesText(), m_names);
    m_nextSeries->setObjectName(QStringLiteral("cb_nextSeries"));
    m_nextSeries->setChecked(true);
    m_series = new QSpinBox(m_names);
    m_series->setObjectName(QStringLiteral("sb_series"));
    m_series->setRange(1, 100000);
    seriesRow->addWidget(m_nextSeries);
    seriesRow->addWidget(m_series);
    namesForm->addRow(Texts::seriesLabel(), seriesRow);
    layout->addWidget(m_names);

    m_timing = new QGroupBox(Texts::timingTitle(), this);
    m_timing->setObjectName(QStringLiteral("gb_timing"));
    auto* timingForm = new QFormLayout(m_timing);
    m_useRate = new QRadioButton(Texts::frameRateText(), m_timing);
    m_useRate->setObjectName(QStringLiteral("rb_frameRate"));
    m_useRate->setChecked(true);
    m_frameRate = new QDoubleSpinBox(m_timing);
    m_frameRate->setObjectName(QStringLiteral("dsb_frameRate"));
    m_frameRate->setRange(0.001, 1e6);
    m_frameRate->setDecimals(3);
    m_frameRate->setValue(20.0);
    timingForm->addRow(m_useRate, m_frameRate);
    m_useTimestamps = new QRadioButton(Texts::timestampsText(), m_timing);
    m_useTimestamps->setObjectName(QStringLiteral("rb_timestamps"));
    m_timestamps = new QLineEdit(m_timing);
    m_timestamps->setObjectName(QStringLiteral("le_timestamps"));
    QToolButton* browseTimestampsButton = browseButton(m_timing, QStringLiteral("tb_browseTimestamps"));
    timingForm->addRow(m_useTimestamps, pathRow(m_timestamps, browseTimestampsButton));
    layout->addWidget(m_timing);

    m_asStack = new QCheckBox(Texts::asImageStackText(), this);
    m_asStack->setObjectName(QStringLiteral("cb_asStack"));
    layout->addWidget(m_asStack);

    m_columns = new QGroupBox(Texts::spreadsheetTitle(), this);
    m_columns->setObjectName(QStringLiteral("gb_columns"));
    auto* columnsForm = new QFormLayout(m_columns);
    m_sheet = new QComboBox(m_columns);
    m_sheet->setObjectName(QStringLiteral("cb_sheet"));
    m_sheetLabel = new QLabel(Texts::sheetLabel(), m_columns);
    columnsForm->addRow(m_sheetLabel, m_sheet);
    m_timeColumn = new QSpinBox(m_columns);
    m_timeColumn->setObjectName(QStringLiteral("sb_timeColumn"));
    m_timeColumn->setRange(1, 100000);
    columnsForm->addRow(Texts::timeColumnLabel(), m_timeColumn);
    m_timeUnit = new QComboBox(m_columns);
    m_timeUnit->setObjectName(QStringLiteral("cb_timeUnit"));
    m_timeUnit->addItem(QStringLiteral("s"), static_cast<int>(TimeUnit::Seconds));
    m_timeUnit->addItem(QStringLiteral("ms"), static_cast<int>(TimeUnit::Milliseconds));
    m_timeUnit->addItem(QStringLiteral("µs"), static_cast<int>(TimeUnit::Microseconds));
    m_timeUnit->addItem(QStringLiteral("min"), static_cast<int>(TimeUnit::Minutes));
    columnsForm->addRow(Texts::timeUnitLabel(), m_timeUnit);
    m_eventColumns = new QLineEdit(m_columns);
    m_eventColumns->setObjectName(QStringLiteral("le_eventColumns"));
    m_eventColumns->setPlaceholderText(Texts::eventColumnsPlaceholder());
    columnsForm->addRow(Texts::eventColumnsLabel(), m_eventColumns);
    m_triggerColumns = new QLineEdit(m_columns);
    m_triggerColumns->setObjectName(QStringLiteral("le_triggerColumns"));
    m_triggerColumns->setPlaceholderText(Texts::triggerColumnsPlaceholder());
    m_triggerColumns->setToolTip(Texts::triggerColumnsTooltip());
    columnsForm->addRow(Texts::triggerColumnsLabel(), m_triggerColumns);
    m_signalUnit = new QLineEdit(m_columns);
    m_signalUnit->setObjectName(QStringLiteral("le_signalUnit"));
    m_signalUnit->setToolTip(Texts::signalUnitTooltip());
    columnsForm->addRow(Texts::signalUnitLabel(), m_signalUnit);
    m_columnPreview = new CsvColumnPreview(m_columns);
    m_columnPreview->setObjectName(QStringLiteral("tw_columnPreview"));
    m_columnPreview->setMinimumHeight(200);
    columnsForm->addRow(m_columnPreview);
    auto* note = new QLabel(Texts::spreadsheetNoteText(), m_columns);
    note->setObjectName(QStringLiteral("lb_spreadsheetNote"));
    note->setWordWrap(true);
    columnsForm->addRow(note);
    layout->addWidget(m_columns);
    m_recording = new RecordingSourcePanel(this);
    m_recording->setObjectName(QStringLiteral("gb_recording"));
    layout->addWidget(m_recording);

    auto* target = new QGroupBox(Texts::targetTitle(), this);
    target->setObjectName(QStringLiteral("gb_target"));
    auto* targetLayout = new QVBoxLayout(target);
    auto* choice = new QHBoxLayout;
    m_existingFile = new QRadioButton(Texts::existingFileText(), target);
    m_existingFile->setObjectName(QStringLiteral("rb_existingFile"));
    m_newFile = new QRadioButton(Texts::newFileText(), target);
    m_newFile->setObjectName(QStringLiteral("rb_newFile"));
    choice->addWidget(m_existingFile);
    choice->addWidget(m_newFile);
    targetLayout->addLayout(choice);
    m_target = new QLineEdit(target);
    m_target->setObjectName(QStringLiteral("le_target"));
    QToolButton* browseTargetButton = browseButton(target, QStringLiteral("tb_browseTarget"));
    targetLayout->addLayout(pathRow(m_target, browseTargetButton));
    layout->addWidget(target);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* convertButton = new QPushButton(Texts::convertButtonText(), this);
    convertButton->setObjectName(QStringLiteral("pb_convert"));
    auto* closeButton = new QPushButton(Texts::closeButtonText(), this);
    closeButton->setObjectName(QStringLiteral("pb_close"));
    // No default button: Enter in a path field must not start writing a file.
    for (QPushButton* button : {convertButton, closeButton})
        button->setAutoDefault(false);
    buttons->addWidget(convertButton);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);

    connect(m_sourceType, &QComboBox::currentIndexChanged, this, &ConvertDialog::updateVisibility);
    // The preview follows the file and every field that gives a column its role.
    connect(m_source, &QLineEdit::textChanged, this, &ConvertDialog::updateSheets);
    connect(m_source, &QLineEdit::textChanged, this, &ConvertDialog::updateRecording);
    connect(m_sheet, &QComboBox::currentIndexChanged, this, &ConvertDialog::updatePreview);
    connect(m_timeColumn, &QSpinBox::valueChanged, this, &ConvertDialog::updateColumnRoles);
    for (QLineEdit* field : {m_eventColumns, m_triggerColumns, m_signalUnit})
        connect(field, &QLineEdit::textChanged, this, &ConvertDialog::updateColumnRoles);
    updateColumnRoles();
    connect(m_asStack, &QCheckBox::toggled, this, &ConvertDialog::updateVisibility);
    connect(m_nextSeries, &QCheckBox::toggled, this, &ConvertDialog::updateVisibility);
    connect(m_useRate, &QRadioButton::toggled, this, &ConvertDialog::updateVisibility);
    connect(browseSourceButton, &QToolButton::clicked, this, &ConvertDialog::browseSource);
    connect(browseTimestampsButton, &QToolButton::clicked, this, &ConvertDialog::browseTimestamps);
    connect(browseTargetButton, &QToolButton::clicked, this, &ConvertDialog::browseTarget);
    connect(convertButton, &QPushButton::clicked, this, &ConvertDialog::convert);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
}

ConvertDialog::SourceType ConvertDialog::sourceType() const
{
    return static_cast<SourceType>(m_sourceType->currentIndex());
}

void ConvertDialog::updateVisibility()
{
    const SourceType type = sourceType();
    const bool tiff = type == TiffFile || type == TiffFolder;
    m_names->setVisible(type != Version5);
    m_sensorLabel->setVisible(type != Spreadsheet && type != Recording);
    m_sensor->setVisible(type != Spreadsheet && type != Recording);
    m_sensor->setEnabled(type != Video || m_asStack->isChecked());
    m_series->setEnabled(!m_nextSeries->isChecked());
    m_timing->setVisible(tiff);
    m_frameRate->setEnabled(m_useRate->isChecked());
    m_timestamps->setEnabled(!m_useRate->isChecked());
    m_asStack->setVisible(type == Video);
    m_columns->setVisible(type == Spreadsheet);
    m_recording->setVisible(type == Recording);
    updateSheets();
    updateRecording();
    // A version-5 file is copied into a new file of its own.
    m_existingFile->setEnabled(type != Version5);
    if (type == Version5)
        m_newFile->setChecked(true);
    m_target->setPlaceholderText(type == Version5 ? Texts::version6TargetPlaceholder() : QString());
}

void ConvertDialog::updateSheets()
{
    if (sourceType() != Spreadsheet)
        return;
    const QString path = m_source->text().trimmed();
    const bool workbook = XlsxSheetReader::isWorkbook(path);
    QStringList names;
    QString error;
    // An unreadable workbook lists no sheets; Convert says what is wrong with it.
    if (workbook)
        XlsxSheetReader::sheetNames(path, names, error);
    {
        const QSignalBlocker blocker(m_sheet);
        m_sheet->clear();
        m_sheet->addItems(names);
    }
    m_sheetLabel->setVisible(workbook);
    m_sheet->setVisible(workbook);
    updatePreview();
}

void ConvertDialog::updateRecording()
{
    if (sourceType() != Recording)
        return;
    m_recording->setSource(m_source->text().trimmed());
    if (m_device->text().trimmed().isEmpty())
        m_device->setText(m_recording->format());
}

void ConvertDialog::updatePreview()
{
    if (sourceType() == Spreadsheet)
        m_columnPreview->setSource(m_source->text().trimmed(), m_sheet->currentText());
}

void ConvertDialog::updateColumnRoles()
{
    // Fields that do not parse yet keep the roles shown; Convert says what is wrong.
    CsvColumnRoles roles;
    roles.timeColumn = m_timeColumn->value() - 1;
    if (!parseEventColumns(m_eventColumns->text(), roles.eventColumns) ||
        !parseTriggerColumns(m_triggerColumns->text(), roles.triggerColumns))
        return;
    roles.signalUnit = m_signalUnit->text().trimmed();
    m_columnPreview->setRoles(roles);
}

void ConvertDialog::browseSource()
{
    QString path;
    switch (sourceType()) {
    case TiffFolder:
        path = QFileDialog::getExistingDirectory(this, Texts::sourceLabel(), m_source->text());
        break;
    case TiffFile:
        path =
            QFileDialog::getOpenFileName(this, Texts::sourceLabel(), m_source->text(), Texts::tiffFilter());
        break;
    case Video:
        path =
            QFileDialog::getOpenFileName(this, Texts::sourceLabel(), m_source->text(), Texts::videoFilter());
        break;
    case Spreadsheet:
        path = QFileDialog::getOpenFileName(this, Texts::sourceLabel(), m_source->text(),
                                            Texts::spreadsheetFilter());
        break;
    case Version5:
        path = QFileDialog::getOpenFileName(this, Texts::sourceLabel(), m_source->text(), FD::FilesV5Filter);
        break;
    case Recording:
        path = QFileDialog::getOpenFileName(this, Texts::sourceLabel(), m_source->text(),
                                            Texts::recordingFilter());
        break;
    }
    if (!path.isEmpty())
        m_source->setText(path);
}

void ConvertDialog::browseTimestamps()
{
    const QString path = QFileDialog::getOpenFileName(this, Texts::timestampsText(), m_timestamps->text(),
                                                      Texts::spreadsheetFilter());
    if (!path.isEmpty()) {
        m_timestamps->setText(path);
        m_useTimestamps->setChecked(true);
    }
}

void ConvertDialog::browseTarget()
{
    QString path =
        m_existingFile->isChecked()
            ? QFileDialog::getOpenFileName(this, Texts::targetTitle(), m_target->text(), FD::FileFilter)
            : QFileDialog::getSaveFileName(this, Texts::targetTitle(), m_target->text(), FD::FileFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += FD::FileExtension;
    m_target->setText(path);
}

ConversionDestination ConvertDialog::destination() const
{
    ConversionDestination to;
    to.filepath = m_target->text().trimmed();
    to.device = m_device->text().trimmed();
    to.sensor = m_sensor->text().trimmed();
    to.series = m_nextSeries->isChecked() ? 0 : m_series->value();
    return to;
}

bool ConvertDialog::checkTarget(QString& problem) const
{
    const QString target = m_target->text().trimmed();
    if (target.isEmpty())
        problem = Texts::chooseTargetMessage();
    else if (m_existingFile->isChecked() && !QFileInfo(target).isFile())
        problem = Texts::missingFileMessage().arg(target);
    else if (m_newFile->isChecked() && QFileInfo::exists(target))
        problem = Texts::newFileExistsMessage().arg(target);
    return problem.isEmpty();
}

std::optional<ConversionRequest> ConvertDialog::buildRequest(QString& problem) const
{
    problem.clear();
    const SourceType type = sourceType();
    const QString source = m_source->text().trimmed();
    if (source.isEmpty()) {
        problem = Texts::chooseSourceMessage();
        return std::nullopt;
    }
    if (type == Version5) {
        const QString target = m_target->text().trimmed();
        if (!target.isEmpty() && QFileInfo::exists(target)) {
            problem = Texts::version5TargetExistsMessage().arg(target);
            return std::nullopt;
        }
        return Version5ConversionConfig{source, target};
    }
    ConversionDestination to = destination();
    const bool needsSensor =
        type == TiffFile || type == TiffFolder || (type == Video && m_asStack->isChecked());
    if (!needsSensor)
        to.sensor.clear();
    if (!checkTarget(problem))
        return std::nullopt;
    if (!ConversionTarget::isUsableName(to.device)) {
        problem = Texts::deviceNameMessage().arg(to.device);
        return std::nullopt;
    }
    if (needsSensor && !ConversionTarget::isUsableName(to.sensor)) {
        problem = Texts::sensorNameMessage().arg(to.sensor);
        return std::nullopt;
    }
    if (type == Video)
        return VideoConversionConfig{source, to, m_asStack->isChecked()};
    if (type == Recording) {
        RecordingConversionConfig config{source, to, m_recording->chosenStores(),
                                         m_recording->digitalInputsPath()};
        if (m_recording->hasStores() && config.stores.isEmpty()) {
            problem = Texts::chooseStoresMessage();
            return std::nullopt;
        }
        return config;
    }
    if (type == Spreadsheet) {
        SpreadsheetConversionConfig config;
        config.sourcePath = source;
        config.sheet = m_sheet->currentText();
        config.destination = to;
        config.timeColumn = m_timeColumn->value() - 1;
        config.timeUnit = static_cast<TimeUnit>(m_timeUnit->currentData().toInt());
        if (!parseEventColumns(m_eventColumns->text(), config.eventColumns)) {
            problem = Texts::eventColumnsMessage().arg(m_eventColumns->text());
            return std::nullopt;
        }
        if (!parseTriggerColumns(m_triggerColumns->text(), config.triggerColumns)) {
            problem = Texts::triggerColumnsMessage().arg(m_triggerColumns->text());
            return std::nullopt;
        }
        config.signalUnit = m_signalUnit->text().trimmed();
        return config;
    }
    TiffStackConversionConfig config;
    config.sourcePath = source;
    config.destination = to;
    if (m_useRate->isChecked()) {
        config.frameRate = m_frameRate->value();
    } else {
        config.timestampsPath = m_timestamps->text().trimmed();
        if (config.timestampsPath.isEmpty()) {
            problem = Texts::chooseTimestampsMessage();
            return std::nullopt;
        }
    }
    return config;
}

bool ConvertDialog::convert()
{
    QString problem;
    const std::optional<ConversionRequest> request = buildRequest(problem);
    if (!request) {
        m_present(Texts::convertWindowTitle(), problem, QMessageBox::Warning);
        return false;
    }
    ConversionResult result;
    BackgroundJob job(ZarviMainDefinitions::progressTitle());
    job.exec(Texts::convertingLabel().arg(FileConversion::sourcePath(*request)),
             [&](Feedback& feedback) { result = FileConversion::run(*request, &feedback); });
    if (result.canceled)
        return false;
    if (!result.ok()) {
        const QString title =
            !result.title.isEmpty() ? result.title : ZarviMainDefinitions::errorOperationTitle();
        m_present(title, result.error, result.refused ? QMessageBox::Warning : QMessageBox::Critical);
        return false;
    }
    const QStringList lines = result.datapaths + result.notes;
    m_present(Texts::convertedTitle(),
              Texts::convertedMessage().arg(result.filepath, lines.join(QStringLiteral("<br>"))),
              QMessageBox::Information);
    m_convertedFile = result.filepath;
    accept();
    return true;
}

} // namespace zarvi
