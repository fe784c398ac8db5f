#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/CardPortrait.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/SharedCache.h"
#include "Tools/Specimen/Specimen.h"
#include "Tools/Specimen/SpecimenFonts.h"

#include <QDebug>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace kelvara::specimen {

namespace {

using Face = SpecimenFonts::Face;

const QRectF portraitArea(3.6, 15.6, 24.6, 32.0);
const QRectF ghostArea(70.2, 28.2, 11.6, 15.1);
const QColor ink(24, 24, 30);
const QColor labelInk(70, 74, 92);

/// A painter over a fresh card in millimetres, clipped to the rounded corners.
class Press
{
public:
    Press(int width, const SpecimenFonts& fonts) : m_fonts(fonts)
    {
        const int w = std::max(1, width);
        const int h = std::max(1, static_cast<int>(std::lround(w * cardHeight / cardWidth)));
        image = QImage(w, h, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        painter.begin(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(w / cardWidth, h / cardHeight);
    }

    void text(Face face, QPointF baseLine, double capHeight, const QColor& colour, const QString& words)
    {
        painter.fillPath(m_fonts.outline(face, words, capHeight).translated(baseLine), colour);
    }

    void field(QPointF topLeft, const QString& label, const QString& value, double capHeight = 1.75)
    {
        text(Face::Sans, topLeft + QPointF(0, 1.2), 0.95, labelInk, label);
        text(Face::SansBold, topLeft + QPointF(0, 2.3 + capHeight), capHeight, ink, value);
    }

    /// The word across the card, outlined and see-through, so that what lies beneath stays readable.
    void specimenMark(QPointF centre, double capHeight, double degrees)
    {
        QPainterPath word = m_fonts.outline(Face::SansBold, QStringLiteral("SPECIMEN"), capHeight);
        word.translate(-word.boundingRect().center());
        painter.save();
        painter.translate(centre);
        painter.rotate(degrees);
        painter.setPen(QPen(QColor(200, 30, 50, 90), 0.16));
        painter.setBrush(QColor(200, 30, 50, 44));
        painter.drawPath(word);
        painter.restore();
    }

    /// The security background: the same on every card, and the costliest part of one, so the last few are kept.
    void background(bool front)
    {
        using Key = std::tuple<bool, int>;
        static SharedCache<Key, QImage> cache(6);
        const auto drawn = cache.get(Key(front, image.width()), [&] {
            QImage blank(image.size(), QImage::Format_ARGB32_Premultiplied);
            QPainter pen(&blank);
            pen.setRenderHint(QPainter::Antialiasing);
            pen.setTransform(painter.transform());
            drawSecurityBackground(pen, front);
            return blank;
        });
        painter.save();
        painter.resetTransform();
        painter.drawImage(0, 0, *drawn);
        painter.restore();
    }

    /// Cuts the corners and hands the card over.
    QImage finished()
    {
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        QImage cut(image.size(), QImage::Format_ARGB32_Premultiplied);
        cut.fill(Qt::transparent);
        QPainter shears(&cut);
        shears.setRenderHint(QPainter::Antialiasing);
        shears.setTransform(painter.transform());
        shears.setPen(Qt::NoPen);
        shears.setBrush(Qt::white);
        shears.drawRoundedRect(QRectF(0, 0, cardWidth, cardHeight), cardRadius, cardRadius);
        shears.end();
        painter.resetTransform();
        painter.drawImage(0, 0, cut);
        painter.end();
        return std::move(image);
    }

    QImage image;
    QPainter painter;

private:
    const SpecimenFonts& m_fonts;
};

QString date(const QDate& day)
{
    return QLocale::c().toString(day, QStringLiteral("dd.MM.yyyy"));
}

void drawSignature(QPainter& painter, std::uint32_t seed, const QRectF& area)
{
    Dice dice(seed, 0x5167);
    QPainterPath line(area.topLeft() + QPointF(0, area.height() * 0.6));
    const int strokes = dice.integer(5, 8);
    for (int i = 1; i <= strokes; ++i) {
        const double x = area.left() + area.width() * i / strokes;
        const auto y = [&] { return area.top() + area.height() * dice.real(-0.1, 1.1); };
        line.cubicTo(QPointF(x - area.width() * dice.real(0.05, 0.3), y()), QPointF(x - 0.4, y()), QPointF(x, y()));
    }
    painter.strokePath(line, QPen(QColor(30, 34, 80), 0.28, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

const SpecimenFonts* fontsOrComplaint()
{
    const SpecimenFonts* fonts = SpecimenFonts::instance();
    if (!fonts)
        qWarning().noquote() << "Specimen:" << SpecimenFonts::problem();
    return fonts;
}

} // namespace

QImage printFront(const SpecimenData& data, int width)
{
    const SpecimenFonts* fonts = fontsOrComplaint();
    if (!fonts)
        return {};
    Press press(width, *fonts);
    press.background(true);
    drawFlag(press.painter, { 3.6, 3.4, 7.2, 4.8 });
    press.text(
        Face::SansBold, { 13.2, 5.7 }, 2.05, QColor(150, 24, 38), QStringLiteral("TÜRKİYE CUMHURİYETİ KİMLİK KARTI"));
    press.text(
        Face::Sans, { 13.2, 8.7 }, 1.45, QColor(60, 64, 86), QStringLiteral("REPUBLIC OF TÜRKİYE IDENTITY CARD"));
    press.text(Face::Sans, { 3.6, 11.4 }, 0.95, labelInk, QStringLiteral("T.C. Kimlik No / TR Identity No"));
    press.text(Face::SansBold, { 3.6, 14.5 }, 1.95, ink, data.identityNumber);

    drawPortrait(press.painter, data.seed, portraitArea);
    press.specimenMark({ 55.5, 31 }, 7.0, -21);
    press.field({ 31, 12.6 }, QStringLiteral("Soyadı / Surname"), data.surname);
    press.field({ 31, 19.0 }, QStringLiteral("Adı / Given Name(s)"), data.givenNames);
    press.field({ 31, 25.4 }, QStringLiteral("Doğum Tarihi / Date of Birth"), date(data.birthDate));
    press.field({ 56.5, 25.4 }, QStringLiteral("Cinsiyeti / Gender"),
        data.sex == u"F" ? QStringLiteral("K / F") : QStringLiteral("E / M"));
    press.field({ 31, 31.8 }, QStringLiteral("Seri No / Document No"), data.documentNumber);
    press.field({ 56.5, 31.8 }, QStringLiteral("Uyruğu"), QStringLiteral("T.C./TUR"));
    press.field({ 31, 38.2 }, QStringLiteral("Son Geçerlilik / Valid Until"), date(data.expiryDate));
    press.text(Face::Sans, { 31, 46 }, 0.95, labelInk, QStringLiteral("İmzası / Signature"));
    drawSignature(press.painter, data.seed, { 32, 46.6, 19, 4.2 });
    drawGhostPortrait(press.painter, data.seed, ghostArea);
    press.text(Face::SansBold, { 4.4, 50.6 }, 1.5, QColor(200, 30, 50, 200), QStringLiteral("SPECIMEN / ÖRNEKTİR"));
    return press.finished();
}

QImage printBack(const SpecimenData& data, int width)
{
    const SpecimenFonts* fonts = fontsOrComplaint();
    if (!fonts)
        return {};
    Press press(width, *fonts);
    press.background(false);
    // The machine-readable zone stays clear of pattern and mark.
    press.painter.fillRect(QRectF(0, cardHeight - 21.0, cardWidth, 21.0), QColor(246, 246, 240, 150));
    press.specimenMark({ 33, 18 }, 7.2, -16);
    press.field({ 4.2, 3.6 }, QStringLiteral("Anne Adı / Mother's Name"), data.motherName);
    press.field({ 4.2, 9.8 }, QStringLiteral("Baba Adı / Father's Name"), data.fatherName);
    press.field({ 4.2, 16.0 }, QStringLiteral("Veren Makam / Issued by"), QStringLiteral("T.C. ÖRNEK MAKAMI"));
    press.field({ 4.2, 22.2 }, QStringLiteral("Kayıt / Registry"), data.identityNumber.left(6));
    press.field({ 38.5, 22.2 }, QStringLiteral("Seri No / Document No"), data.documentNumber);
    drawBarCode(press.painter, data.documentNumber, { 43, 4.6, 37.5, 8.2 });
    press.text(Face::Sans, { 53.5, 15.0 }, 1.25, ink, data.documentNumber);
    drawFlag(press.painter, { 71.5, 18.2, 9, 6 });
    press.text(Face::SansBold, { 62.2, 28.6 }, 1.5, QColor(200, 30, 50, 200), QStringLiteral("SPECIMEN"));

    // TD1: ten characters an inch, six lines an inch, size-1 OCR-B with 2.4 mm capitals (ICAO Doc 9303-3 and -5).
    constexpr double pitch = 2.54;
    constexpr double lineDistance = 4.23;
    constexpr double capitals = 2.40;
    constexpr double lastCentre = cardHeight - 6.2;
    const double left = (cardWidth - 30 * pitch) / 2;
    const QStringList lines = data.mrzLines();
    for (int row = 0; row < lines.size(); ++row) {
        const double baseLine = lastCentre - (2 - row) * lineDistance + capitals / 2;
        for (int column = 0; column < lines[row].size(); ++column) {
            const QPainterPath glyph = fonts->outline(Face::Ocr, lines[row].mid(column, 1), capitals);
            const double cell = left + (column + 0.5) * pitch - glyph.boundingRect().center().x();
            press.painter.fillPath(glyph.translated(cell, baseLine), QColor(16, 16, 18));
        }
    }
    return press.finished();
}

QRectF portraitRect()
{
    return { portraitArea.x() / cardWidth, portraitArea.y() / cardHeight, portraitArea.width() / cardWidth,
        portraitArea.height() / cardHeight };
}

QRectF printedFace(const SpecimenData& data)
{
    const QRectF face = faceInPortrait(data.seed, portraitArea);
    return { face.x() / cardWidth, face.y() / cardHeight, face.width() / cardWidth, face.height() / cardHeight };
}

QString printerProblem()
{
    return SpecimenFonts::problem();
}

} // namespace kelvara::specimen
