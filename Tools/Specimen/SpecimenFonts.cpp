#include "Tools/Specimen/SpecimenFonts.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTransform>

#include <algorithm>

namespace kelvara::specimen {

namespace {

constexpr double outlineSize = 256;

struct FontFile
{
    const char* path;
    const char* package;
};

QFont fontFrom(const FontFile& file, QString& problem)
{
    const int id = QFontDatabase::addApplicationFont(QString::fromLatin1(file.path));
    const QStringList families = id < 0 ? QStringList() : QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty()) {
        problem = QStringLiteral("The font file %1 is missing: install %2.")
                      .arg(QLatin1String(file.path), QLatin1String(file.package));
        return {};
    }
    QFont font(families.constFirst());
    font.setPixelSize(static_cast<int>(outlineSize));
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::NoFontMerging);
    return font;
}

} // namespace

SpecimenFonts::SpecimenFonts()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        m_problem = QStringLiteral("Printing needs a QGuiApplication for its fonts.");
        return;
    }
    m_sans = fontFrom({ "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "fonts-dejavu-core" }, m_problem);
    m_sansBold = fontFrom({ "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", "fonts-dejavu-core" }, m_problem);
    m_sansBold.setBold(true);
    m_ocr = fontFrom({ "/usr/share/fonts/opentype/ocr-b/OCRB.otf", "fonts-ocr-b" }, m_problem);
}

const SpecimenFonts& loadedFonts()
{
    static const SpecimenFonts fonts;
    return fonts;
}

const SpecimenFonts* SpecimenFonts::instance()
{
    const SpecimenFonts& fonts = loadedFonts();
    return fonts.m_problem.isEmpty() ? &fonts : nullptr;
}

QString SpecimenFonts::problem()
{
    return loadedFonts().m_problem;
}

const QFont& SpecimenFonts::base(Face face) const
{
    return face == Face::Ocr ? m_ocr : face == Face::SansBold ? m_sansBold : m_sans;
}

QFont SpecimenFonts::font(Face face, int pixelSize) const
{
    QFont font = base(face);
    font.setPixelSize(std::max(1, pixelSize));
    return font;
}

SpecimenFonts::Glyph SpecimenFonts::glyph(Face face, QChar character) const
{
    const std::lock_guard lock(m_mutex);
    Glyph& glyph = m_glyphs[{ face, character.unicode() }];
    if (glyph.advance == 0) {
        glyph.path.addText(0, 0, base(face), character);
        glyph.advance = QFontMetricsF(base(face)).horizontalAdvance(character);
    }
    return glyph;
}

QPainterPath SpecimenFonts::outline(Face face, const QString& text, double capHeight) const
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    double x = 0;
    for (const QChar character : text) {
        const Glyph drawn = glyph(face, character);
        path.addPath(drawn.path.translated(x, 0));
        x += drawn.advance;
    }
    const double scale = capHeight / glyph(face, u'H').path.boundingRect().height();
    return QTransform::fromScale(scale, scale).map(path);
}

} // namespace kelvara::specimen
