#pragma once

#include <QFont>
#include <QPainterPath>
#include <QString>

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

    /// Outlines of `text` with its base line at the origin and capitals `capHeight` units high. Outlines have no
    /// hinting, and so look the same at every size.
    [[nodiscard]] QPainterPath outline(Face face, const QString& text, double capHeight) const;

private:
    SpecimenFonts();

    QFont m_sans;
    QFont m_sansBold;
    QFont m_ocr;
    QString m_problem;

    friend const SpecimenFonts& loadedFonts();
};

} // namespace kelvara::specimen
