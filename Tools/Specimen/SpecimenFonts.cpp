#include "Tools/Specimen/SpecimenFonts.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QTransform>

#include <array>

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

QPainterPath SpecimenFonts::outline(Face face, const QString& text, double capHeight) const
{
    const QFont& font = face == Face::Ocr ? m_ocr : face == Face::SansBold ? m_sansBold : m_sans;
    QPainterPath capital;
    capital.addText(0, 0, font, QStringLiteral("H"));
    QPainterPath path;
    path.addText(0, 0, font, text);
    const double scale = capHeight / capital.boundingRect().height();
    return QTransform::fromScale(scale, scale).map(path);
}

} // namespace kelvara::specimen
