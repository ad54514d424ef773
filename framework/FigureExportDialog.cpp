#include "framework/FigureExportDialog.h"

#include "definitions/FigureDefinitions.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QToolButton>

#include <qcustomplot.h>

#include <algorithm>

namespace zarvi {

namespace {

using FD = FigureDefinitions;
using Format = FigureExport::Format;
using Theme = PlotStyle::Theme;

QString settingsKey(const QString& key)
{
    return FD::SettingsGroup + QLatin1Char('/') + key;
}

QSpinBox* spinBox(QWidget* parent, const char* objectName, int maximum, const QString& suffix)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setRange(16, maximum);
    box->setSuffix(suffix);
    return box;
}

QDoubleSpinBox* millimetreBox(QWidget* parent, const char* objectName)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setRange(10.0, 2000.0);
    box->setDecimals(1);
    box->setSuffix(FD::millimetreSuffix());
    return box;
}

QLineEdit* lineEdit(QWidget* parent, const char* objectName, const QString& text)
{
    auto* edit = new QLineEdit(text, parent);
    edit->setObjectName(QString::fromLatin1(objectName));
    return edit;
}

/// A file name made of the title, without characters file systems refuse.
QString fileNameFor(const QString& title)
{
    QString name = title.trimmed();
    name.replace(QRegularExpression(QStringLiteral(R"([\\/:*?"<>|]+)")), QStringLiteral("_"));
    return name.isEmpty() ? FD::defaultFileName() : name;
}

} // namespace

FigureExportDialog::FigureExportDialog(QCustomPlot* plot, const QString& title, QWidget* parent)
    : QDialog(parent), m_plot(plot)
{
    setObjectName(QStringLiteral("dlg_figureExport"));
    setWindowTitle(FD::dialogTitle());
    const FigureExport::Options defaults;
    QSettings settings;

    m_form = new QFormLayout(this);
    m_path = lineEdit(this, "le_path", QString());
    auto* browse = new QToolButton(this);
    browse->setObjectName(QStringLiteral("tb_browse"));
    browse->setText(FD::browseLabel());
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(m_path, 1);
    fileRow->addWidget(browse);
    m_form->addRow(FD::fileLabel(), fileRow);

    m_format = new QComboBox(this);
    m_format->setObjectName(QStringLiteral("cb_format"));
    m_format->addItem(FD::pngFormat(), static_cast<int>(Format::Png));
    m_format->addItem(FD::svgFormat(), static_cast<int>(Format::Svg));
    m_format->addItem(FD::pdfFormat(), static_cast<int>(Format::Pdf));
    m_format->setCurrentIndex(std::clamp(settings.value(settingsKey(FD::FormatKey), 0).toInt(), 0, 2));
    m_form->addRow(FD::formatLabel(), m_format);

    const QSize pixels = settings.value(settingsKey(FD::PixelSizeKey), defaults.pixels).toSize();
    m_pixelWidth = spinBox(this, "sb_pixelWidth", 20000, FD::pixelSuffix());
    m_pixelWidth->setValue(pixels.width());
    m_pixelHeight = spinBox(this, "sb_pixelHeight", 20000, FD::pixelSuffix());
    m_pixelHeight->setValue(pixels.height());
    m_dpi = spinBox(this, "sb_resolution", 2400, FD::dpiSuffix());
    m_dpi->setValue(settings.value(settingsKey(FD::ResolutionKey), defaults.dpi).toInt());
    const QSizeF mm = settings.value(settingsKey(FD::MillimetreSizeKey), defaults.millimetres).toSizeF();
    m_mmWidth = millimetreBox(this, "dsb_mmWidth");
    m_mmWidth->setValue(mm.width());
    m_mmHeight = millimetreBox(this, "dsb_mmHeight");
    m_mmHeight->setValue(mm.height());
    m_form->addRow(FD::widthLabel(), m_pixelWidth);
    m_form->addRow(FD::heightLabel(), m_pixelHeight);
    m_form->addRow(FD::resolutionLabel(), m_dpi);
    m_form->addRow(FD::widthLabel(), m_mmWidth);
    m_form->addRow(FD::heightLabel(), m_mmHeight);
    auto* note = new QLabel(FD::sizeNote(), this);
    note->setObjectName(QStringLiteral("lb_sizeNote"));
    m_form->addRow(note);

    m_title = lineEdit(this, "le_title", title);
    m_xLabel = lineEdit(this, "le_xLabel", plot->xAxis->label());
    m_yLabel = lineEdit(this, "le_yLabel", plot->yAxis->label());
    m_form->addRow(FD::titleLabel(), m_title);
    m_form->addRow(FD::xLabelLabel(), m_xLabel);
    m_form->addRow(FD::yLabelLabel(), m_yLabel);
    m_theme = new QComboBox(this);
    m_theme->setObjectName(QStringLiteral("cb_theme"));
    m_theme->addItem(FD::lightTheme(), static_cast<int>(Theme::Light));
    m_theme->addItem(FD::darkTheme(), static_cast<int>(Theme::Dark));
    m_theme->setCurrentIndex(std::clamp(settings.value(settingsKey(FD::ThemeKey), 0).toInt(), 0, 1));
    m_form->addRow(FD::themeLabel(), m_theme);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(FD::exportButton());
    m_form->addRow(buttons);

    const QString folder = settings.value(settingsKey(FD::FolderKey), QDir::homePath()).toString();
    setPath(QDir(folder).filePath(FigureExport::withExtension(fileNameFor(title), format())));
    onFormatChanged();

    connect(browse, &QToolButton::clicked, this, &FigureExportDialog::onBrowse);
    connect(m_format, &QComboBox::currentIndexChanged, this, &FigureExportDialog::onFormatChanged);
    // The format follows the extension typed.
    connect(m_path, &QLineEdit::textEdited, this, [this](const QString& path) {
        m_format->setCurrentIndex(
            m_format->findData(static_cast<int>(FigureExport::formatOf(path, format()))));
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &FigureExportDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FigureExportDialog::reject);
}

FigureExport::Format FigureExportDialog::format() const
{
    return static_cast<Format>(m_format->currentData().toInt());
}

FigureExport::Options FigureExportDialog::options() const
{
    FigureExport::Options options;
    options.path = m_path->text().trimmed();
    options.format = format();
    options.pixels = QSize(m_pixelWidth->value(), m_pixelHeight->value());
    options.dpi = m_dpi->value();
    options.millimetres = QSizeF(m_mmWidth->value(), m_mmHeight->value());
    options.title = m_title->text();
    options.xLabel = m_xLabel->text();
    options.yLabel = m_yLabel->text();
    options.theme = static_cast<Theme>(m_theme->currentData().toInt());
    return options;
}

void FigureExportDialog::setPath(const QString& path)
{
    m_path->setText(path);
    m_format->setCurrentIndex(m_format->findData(static_cast<int>(FigureExport::formatOf(path, format()))));
}

void FigureExportDialog::onBrowse()
{
    const QStringList filters = FD::fileFilter().split(QStringLiteral(";;"));
    QString filter = filters.value(m_format->currentIndex());
    const QString path =
        QFileDialog::getSaveFileName(this, FD::dialogTitle(), m_path->text(), FD::fileFilter(), &filter);
    if (path.isEmpty())
        return;
    // A name typed without extension takes the one of the filter chosen.
    const auto chosen = static_cast<Format>(std::max<qsizetype>(0, filters.indexOf(filter)));
    setPath(FigureExport::withExtension(path, FigureExport::formatOf(path, chosen)));
}

void FigureExportDialog::onFormatChanged()
{
    const bool raster = format() == Format::Png;
    for (QWidget* field : {static_cast<QWidget*>(m_pixelWidth), static_cast<QWidget*>(m_pixelHeight),
                           static_cast<QWidget*>(m_dpi)})
        m_form->setRowVisible(field, raster);
    for (QWidget* field : {m_mmWidth, m_mmHeight})
        m_form->setRowVisible(field, !raster);
    // The name keeps up with the format: its extension is swapped for the new one.
    const QString path = m_path->text();
    const QFileInfo info(path);
    if (!path.isEmpty() && FigureExport::formatOf(path, format()) != format())
        m_path->setText(path.left(path.size() - info.suffix().size()) + FigureExport::extension(format()));
}

void FigureExportDialog::accept()
{
    const FigureExport::Options chosen = options();
    QString error;
    if (chosen.path.isEmpty())
        error = FD::noFileMessage();
    else if (FigureExport::write(m_plot, chosen, error)) {
        remember();
        QDialog::accept();
        return;
    }
    QMessageBox::warning(this, FD::dialogTitle(), error);
}

void FigureExportDialog::remember() const
{
    QSettings settings;
    settings.setValue(settingsKey(FD::FolderKey), QFileInfo(m_path->text().trimmed()).absolutePath());
    settings.setValue(settingsKey(FD::FormatKey), m_format->currentIndex());
    settings.setValue(settingsKey(FD::PixelSizeKey), QSize(m_pixelWidth->value(), m_pixelHeight->value()));
    settings.setValue(settingsKey(FD::ResolutionKey), m_dpi->value());
    settings.setValue(settingsKey(FD::MillimetreSizeKey), QSizeF(m_mmWidth->value(), m_mmHeight->value()));
    settings.setValue(settingsKey(FD::ThemeKey), m_theme->currentIndex());
}

void FigureExportDialog::exportPlot(QCustomPlot* plot, const QString& title, QWidget* parent)
{
    FigureExportDialog dialog(plot, title, parent);
    dialog.exec();
}

QAction* FigureExportDialog::offerOn(QCustomPlot* plot, std::function<QString()> title)
{
    auto* action = new QAction(FigureDefinitions::exportFigureLabel(), plot);
    action->setObjectName(QStringLiteral("act_exportFigure"));
    action->setToolTip(FigureDefinitions::exportFigureTooltip());
    plot->addAction(action);
    plot->setContextMenuPolicy(Qt::ActionsContextMenu);
    QObject::connect(action, &QAction::triggered, plot,
                     [plot, title = std::move(title)] { exportPlot(plot, title(), plot->window()); });
    return action;
}

} // namespace zarvi
