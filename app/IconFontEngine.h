#pragma once

#include <QIconEngine>
#include <QVariantMap>

namespace zarvi {

/// Draws one glyph of the icon font at any size, in the colour that the icon
/// mode asks for: "color" (normal), "color-disabled", "color-active" and
/// "color-selected" from its options. Owned by the QIcon it is given to. GUI thread.
class IconFontEngine : public QIconEngine
{
public:
    IconFontEngine(const QString& family, char16_t glyph, const QVariantMap& options);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;

    /// The colour used for a mode; grey when the option is missing.
    QColor color(QIcon::Mode mode) const;

private:
    QString m_family;
    char16_t m_glyph;
    QVariantMap m_options;
};

} // namespace zarvi
