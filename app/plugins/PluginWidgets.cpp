#include "app/plugins/PluginWidgets.h"

#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace zarvi {

QToolButton* PluginWidgets::toolButton(QWidget* parent, const char* objectName, const QString& text,
                                       const QString& tip, IconFont* icons, IconFont::Glyph glyph)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setText(text);
    button->setToolTip(tip);
    button->setStatusTip(tip);
    button->setWhatsThis(tip);
    button->setAutoRaise(true);
    button->setIconSize(QSize(20, 20));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    if (icons)
        button->setIcon(icons->icon(glyph));
    return button;
}

QWidget* PluginWidgets::page(QWidget* parent, const char* objectName, const QString& placeholder)
{
    auto* page = new QWidget(parent);
    page->setObjectName(QString::fromLatin1(objectName));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* note = new QLabel(placeholder, page);
    note->setAlignment(Qt::AlignCenter);
    note->setEnabled(false);
    layout->addWidget(note);
    return page;
}

void PluginWidgets::place(QWidget* page, QWidget* content)
{
    QLayout* layout = page->layout();
    while (QLayoutItem* item = layout->takeAt(0)) {
        if (QWidget* old = item->widget())
            old->deleteLater();
        delete item; // a layout item is owned by whoever takes it
    }
    content->setParent(page);
    layout->addWidget(content);
}

} // namespace zarvi
