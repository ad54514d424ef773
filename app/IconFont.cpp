#include "app/IconFont.h"

#include "app/AppResources.h"
#include "app/IconFontEngine.h"

#include <QFontDatabase>

namespace zarvi {

IconFont::~IconFont()
{
    if (m_fontId >= 0)
        QFontDatabase::removeApplicationFont(m_fontId);
}

bool IconFont::load()
{
    if (isLoaded())
        return true;
    AppResources::ensureLoaded();
    m_fontId = QFontDatabase::addApplicationFont(QString::fromLatin1(AppResources::IconFontResource));
    if (m_fontId < 0)
        return false;
    const QStringList families = QFontDatabase::applicationFontFamilies(m_fontId);
    m_family = families.isEmpty() ? QString() : families.first();
    return true;
}

void IconFont::setDefaultOption(const QString& key, const QVariant& value)
{
    m_defaults.insert(key, value);
}

QIcon IconFont::icon(Glyph glyph, const QVariantMap& options) const
{
    QVariantMap merged = m_defaults;
    for (auto it = options.begin(); it != options.end(); ++it)
        merged.insert(it.key(), it.value());
    return QIcon(new IconFontEngine(m_family, glyph, merged)); // QIcon owns the engine
}

} // namespace zarvi
