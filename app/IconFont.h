#pragma once

#include <QFont>
#include <QIcon>
#include <QString>
#include <QVariantMap>

namespace zarvi {

/// The icon font of the program: FontAwesome 4 compiled into the resources.
/// Icons are glyphs drawn in the colours of the default options ("color",
/// "color-disabled", "color-selected", "color-active"), which a caller may
/// override per icon. Created once at start-up and handed to the windows. GUI thread.
class IconFont
{
public:
    /// The glyphs the program uses (FontAwesome 4.7 code points).
    enum Glyph : char16_t
    {
        FolderOpen = 0xf07c,
        File = 0xf15b,
        Plus = 0xf067,
        EyeSlash = 0xf070,
        Eye = 0xf06e,
        Exchange = 0xf0ec,
        Compress = 0xf066,
        Scissors = 0xf0c4,
        Upload = 0xf093,
        Trash = 0xf1f8,
        Database = 0xf1c0,
        Flask = 0xf0c3,
        LineChart = 0xf201,
        BarChart = 0xf080,
        Paw = 0xf1b0,
        Sitemap = 0xf0e8,
        Picture = 0xf03e,
        QuestionCircle = 0xf059,
        InfoCircle = 0xf05a,
        Key = 0xf084,
        YoutubePlay = 0xf16a,
        Book = 0xf02d,
        Close = 0xf00d
    };

    IconFont() = default;
    ~IconFont();
    IconFont(const IconFont&) = delete;
    IconFont& operator=(const IconFont&) = delete;

    /// Registers the font from the resources; false when it is missing.
    bool load();
    bool isLoaded() const { return m_fontId >= 0; }
    QString family() const { return m_family; }

    void setDefaultOption(const QString& key, const QVariant& value);
    QVariant defaultOption(const QString& key) const { return m_defaults.value(key); }

    /// The glyph as an icon; `options` override the defaults for this icon only.
    QIcon icon(Glyph glyph, const QVariantMap& options = {}) const;

private:
    int m_fontId = -1;
    QString m_family;
    QVariantMap m_defaults;
};

} // namespace zarvi
