#pragma once

#include <QFont>
#include <QPainterPath>
#include <QString>

#include <map>
#include <mutex>
#include <utility>

namespace kelvara::specimen {

/// The printer's two typefaces, loaded from the system's font files by path, so that no fontconfig rule can put another
/// face in their place. Any thread, while a QGuiApplication lives.
class SpecimenFonts
{
public:
    enum class Face { Sans, SansBold, Ocr };

    /// Loads on first use. Null if a file is missing: see `problem()`.
    [[nodiscard]] static const SpecimenFonts* instance();
    /// What is missing, as a sentence that names the package to install; empty if nothing is.
    [[nodiscard]] static QString problem();

    /// Outlines of `text` with its base line at the origin and capitals `capHeight` units high. They are taken at a
    /// large size, and so look the same at every size. No kerning.
    [[nodiscard]] QPainterPath outline(Face face, const QString& text, double capHeight) const;

    /// A font for `QPainter::drawText`: quicker than outlines for long small text whose exact shape does not matter.
    [[nodiscard]] QFont font(Face face, int pixelSize) const;

private:
    SpecimenFonts();
    [[nodiscard]] const QFont& base(Face face) const;

    struct Glyph
    {
        QPainterPath path;
        double advance = 0;
    };
    [[nodiscard]] Glyph glyph(Face face, QChar character) const;

    QFont m_sans;
    QFont m_sansBold;
    QFont m_ocr;
    QString m_problem;
    // Loading a glyph costs more than drawing it.
    mutable std::mutex m_mutex;
    mutable std::map<std::pair<Face, char16_t>, Glyph> m_glyphs;

    friend const SpecimenFonts& loadedFonts();
};

} // namespace kelvara::specimen
