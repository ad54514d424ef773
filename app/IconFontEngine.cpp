#include "app/IconFontEngine.h"

#include "definitions/ZarviMainDefinitions.h"

#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace zarvi {

namespace {
// The glyph fills most of the icon square; the rest is breathing space.
constexpr double glyphScale = 0.85;
} // namespace

IconFontEngine::IconFontEngine(const QString& family, char16_t glyph, const QVariantMap& options)
    : m_family(family), m_glyph(glyph), m_options(options)
{
}

QColor IconFontEngine::color(QIcon::Mode mode) const
{
    QString key = ZarviMainDefinitions::IconColorKey;
    switch (mode) {
    case QIcon::Disabled:
        key = ZarviMainDefinitions::IconColorDisabledKey;
        break;
    case QIcon::Active:
        key = ZarviMainDefinitions::IconColorActiveKey;
        break;
    case QIcon::Selected:
        key = ZarviMainDefinitions::IconColorSelectedKey;
        break;
    case QIcon::Normal:
        break;
    }
    const QColor color(m_options.value(key).toString());
    return color.isValid() ? color : QColor(Qt::gray);
}

void IconFontEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State)
{
    QFont font(m_family);
    font.setPixelSize(std::max(1, qRound(rect.height() * glyphScale)));
    painter->save();
    painter->setRenderHint(QPainter::TextAntialiasing);
    painter->setPen(color(mode));
    painter->setFont(font);
    painter->drawText(rect, Qt::AlignCenter, QString(QChar(m_glyph)));
    painter->restore();
}

QPixmap IconFontEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
}

QIconEngine* IconFontEngine::clone() const
{
    return new IconFontEngine(*this); // the caller (QIcon) takes ownership
}

QString IconFontEngine::key() const
{
    return QStringLiteral("zarvi-icon-font");
}

} // namespace zarvi
