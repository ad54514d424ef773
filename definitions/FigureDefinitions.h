#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Labels, messages and remembered settings of figure export, the dialog that saves a
/// plot as a PNG, SVG or PDF figure. Constants only, safe to read from any thread;
/// labels go through tr.
class FigureDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(FigureDefinitions)

public:
    static QString exportFigureLabel() { return tr("Export Figure..."); }
    static QString exportFigureTooltip()
    {
        return tr("Save the plot as a figure: PNG, SVG or PDF, with a title, axis labels and a light "
                  "theme for publication.");
    }
    static QString dialogTitle() { return tr("Export Figure"); }
    static QString exportButton() { return tr("Export"); }
    static QString fileLabel() { return tr("File:"); }
    static QString browseLabel() { return tr("..."); }
    static QString formatLabel() { return tr("Format:"); }
    static QString pngFormat() { return tr("PNG image"); }
    static QString svgFormat() { return tr("SVG drawing"); }
    static QString pdfFormat() { return tr("PDF document"); }
    static QString fileFilter() { return tr("PNG Image (*.png);;SVG Drawing (*.svg);;PDF Document (*.pdf)"); }
    static QString widthLabel() { return tr("Width:"); }
    static QString heightLabel() { return tr("Height:"); }
    static QString resolutionLabel() { return tr("Resolution:"); }
    static QString pixelSuffix() { return tr(" px"); }
    static QString millimetreSuffix() { return tr(" mm"); }
    static QString dpiSuffix() { return tr(" dpi"); }
    static QString sizeNote()
    {
        return tr("PNG: size in pixels; text is drawn at its point size for the resolution.<br>"
                  "SVG and PDF: size in millimetres.");
    }
    static QString titleLabel() { return tr("Title:"); }
    static QString xLabelLabel() { return tr("X axis label:"); }
    static QString yLabelLabel() { return tr("Y axis label:"); }
    static QString themeLabel() { return tr("Theme:"); }
    static QString lightTheme() { return tr("Light (publication)"); }
    static QString darkTheme() { return tr("Dark (as on screen)"); }
    static QString noFileMessage() { return tr("Choose the file to write the figure to."); }
    /// %1 file path.
    static QString cannotWriteMessage() { return tr("Unable to write the figure <b>%1</b>."); }
    static QString defaultFileName() { return tr("figure"); }

    // What the dialog remembers from one export to the next.
    static inline const QString SettingsGroup = QStringLiteral("FigureExport");
    static inline const QString FolderKey = QStringLiteral("Folder");
    static inline const QString FormatKey = QStringLiteral("Format");
    static inline const QString PixelSizeKey = QStringLiteral("PixelSize");
    static inline const QString ResolutionKey = QStringLiteral("Resolution");
    static inline const QString MillimetreSizeKey = QStringLiteral("MillimetreSize");
    static inline const QString ThemeKey = QStringLiteral("Theme");
};

} // namespace zarvi
