#pragma once

#include "app/IconFont.h"

#include <QString>

class QToolButton;
class QWidget;

namespace zarvi {

/// The building blocks of the dataset plug-in's frame: the flat tool buttons above the
/// file tree and the view area, and the pages of the view area, which show a
/// placeholder until their content is placed in them. GUI thread.
class PluginWidgets
{
public:
    /// Text beside an icon of the icon font (`icons` may be null: no icon); the tip is
    /// also the status tip and the "What's This".
    static QToolButton* toolButton(QWidget* parent, const char* objectName, const QString& text,
                                   const QString& tip, IconFont* icons, IconFont::Glyph glyph);
    static QWidget* page(QWidget* parent, const char* objectName, const QString& placeholder);
    /// Replaces what the page shows by `content`, which the page then owns.
    static void place(QWidget* page, QWidget* content);
};

} // namespace zarvi
