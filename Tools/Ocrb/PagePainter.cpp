#include "Tools/Ocrb/PagePainter.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/SpecimenFonts.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara::ocrb {

namespace {

using specimen::Dice;
using specimen::SpecimenFonts;

/// Millimetres.
struct Paper
{
    double width;
    double height;
    double left; ///< Of the lines.
    double level; ///< The first line's base.
    double apart;
    double pitch;
};

Paper paperOf(const QStringList& lines, Dice& dice)
{
    const double apart = dice.real(4.2, 6.35);
    const double pitch = 2.54 * dice.real(0.97, 1.03);
    switch (lines.value(0).size()) {
    case 30:
        return { 85.6, 54, dice.real(3.4, 5.5), 51 - 2 * apart - dice.real(0, 4), apart, pitch };
    case 36:
        return { 105, 74, dice.real(4, 8), 69 - apart - dice.real(0, 4), apart, pitch };
    default:
        return { 125, 88, dice.real(4, 8), 83 - apart - dice.real(0, 4), apart, pitch };
    }
}

QColor pastel(Dice& dice)
{
    return QColor::fromHsv(int(dice.real(0, 359)), int(dice.real(5, 70)), int(dice.real(205, 255)));
}

void paintGuilloche(QPainter& painter, const Paper& paper, bool isPoor, Dice& dice)
{
    painter.setBrush(Qt::NoBrush);
    const int families = 2 + int(dice.real(0, 3));
    for (int family = 0; family < families; ++family) {
        QColor colour = QColor::fromHsv(int(dice.real(0, 359)), int(dice.real(40, 170)), int(dice.real(120, 230)));
        colour.setAlphaF(float(dice.real(0.1, isPoor ? 0.9 : 0.5)));
        painter.setPen(QPen(colour, dice.real(0.08, 0.25)));
        const double apart = dice.real(0.7, 2.2);
        const double length = dice.real(8, 40);
        const double height = dice.real(1, 6);
        const double slant = dice.real(-0.6, 0.6);
        for (double y = -paper.height; y < 2 * paper.height; y += apart) {
            QPainterPath wave(QPointF(0, y));
            for (double x = 0; x <= paper.width; x += 1.5)
                wave.lineTo(x, y + slant * x + height * std::sin(x * 6.28 / length + y * 0.11));
            painter.drawPath(wave);
        }
    }
}

void paintText(QPainter& painter, const SpecimenFonts& fonts, SpecimenFonts::Face face, const QString& text,
    const QPointF& base, double capital, const QColor& ink, double condensed = 1)
{
    QTransform place;
    place.translate(base.x(), base.y());
    place.scale(condensed, 1);
    painter.fillPath(place.map(fonts.outline(face, text, capital)), ink);
}

void paintUpperPart(QPainter& painter, const SpecimenFonts& fonts, const Paper& paper, Dice& dice)
{
    const double below = paper.level - 6;
    painter.fillRect(QRectF(5, 14, paper.width * 0.24, std::min(below - 14, 34.0)), pastel(dice).darker(140));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(120, 90, 80));
    painter.drawEllipse(QRectF(5 + paper.width * 0.06, 17, paper.width * 0.12, std::min(below - 20, 18.0)));
    paintText(painter, fonts, SpecimenFonts::Face::SansBold, QStringLiteral("REPUBLIC OF UTOPIA · PASSPORT"), { 6, 9 },
        3.2, QColor(30, 40, 90));
    const QStringList words { QStringLiteral("Surname / Nom"), QStringLiteral("ERIKSSON"),
        QStringLiteral("Date of birth"), QStringLiteral("12 AUG/AOUT 74"), QStringLiteral("Nationality / Nationalité"),
        QStringLiteral("UTOPIAN"), QStringLiteral("Place of birth / Lieu de naissance"),
        QStringLiteral("ZENITH, NORTHERN PROVINCE") };
    double y = 14;
    for (int i = 0; y < below; ++i) {
        const bool caption = i % 2 == 0;
        paintText(painter, fonts, SpecimenFonts::Face::Sans, words[i % words.size()],
            { paper.width * 0.33, y + (caption ? 1.2 : 2.4) }, caption ? 1.1 : 2.2,
            caption ? QColor(60, 80, 140) : QColor(25, 25, 30), 0.9);
        y += caption ? 2.2 : 4.2;
    }
}

void paintZone(QPainter& painter, const SpecimenFonts& fonts, const QStringList& lines, const Paper& paper, bool isPoor,
    Dice& dice)
{
    const int level = int(dice.real(10, isPoor ? 120 : 70));
    const QColor ink(level, level, level + 8);
    const double weight = dice.real(-0.02, isPoor ? 0.3 : 0.1);
    const double widen = isPoor ? dice.real(0.9, 1.08) : 1;
    const double heighten = isPoor ? dice.real(0.88, 1.1) : 1;
    for (qsizetype l = 0; l < lines.size(); ++l) {
        for (qsizetype c = 0; c < lines[l].size(); ++c) {
            QTransform place;
            place.translate(paper.left + paper.pitch * double(c) + dice.normal(0.02),
                paper.level + paper.apart * double(l) + dice.normal(0.02));
            place.scale(widen, heighten);
            const QPainterPath glyph = place.map(fonts.outline(SpecimenFonts::Face::Ocr, lines[l].mid(c, 1), 2.54));
            painter.fillPath(glyph, ink);
            if (weight > 0)
                painter.strokePath(glyph, QPen(ink, weight));
        }
    }
}

} // namespace

PageOptions pageOptions(const QStringList& lines, std::uint32_t seed, int widest, bool isPoor)
{
    Dice dice(seed, 0x706f); // "po"
    PageOptions options { .seed = seed };
    const double least = lines.value(0).size() == 44 ? 520 : lines.value(0).size() == 36 ? 400 : 260;
    options.width = int(least * std::pow(std::max(widest, 100) / least, std::pow(dice.unit(), 1.6)));
    options.isPoor = isPoor;
    options.degrees = (isPoor ? dice.real(-5, 5) : dice.real(-3, 3)) * dice.unit();
    options.blur = dice.real(0, isPoor ? 1.0 : 0.7);
    options.noise = dice.real(0, 6);
    options.isOnTable = dice.unit() < 0.3;
    if (options.isOnTable)
        options.width = int(options.width * 1.35);
    return options;
}

std::optional<Page> paintPage(const QStringList& lines, const PageOptions& options)
{
    const SpecimenFonts* fonts = SpecimenFonts::instance();
    if (!fonts || lines.isEmpty())
        return std::nullopt;
    Dice dice(options.seed, 0x7067); // "pg"
    const Paper paper = paperOf(lines, dice);
    const double around = options.isOnTable ? 0.12 * paper.width : 0;
    const double scale = options.width / (paper.width + 2 * around);
    const int height = int((paper.height + 2 * around) * scale);

    // Printed larger than it is scanned, as a scanner's cells average.
    const double finer = std::max(1.0, std::min(4.0, 2400.0 / options.width));
    QImage large(QSize(int(options.width * finer), int(height * finer)), QImage::Format_RGB32);
    large.fill(
        options.isOnTable ? QColor::fromHsv(int(dice.real(0, 359)), 90, int(dice.real(20, 160))) : QColor(Qt::white));
    QTransform toPicture;
    toPicture.translate(options.width / 2.0, height / 2.0);
    toPicture.rotate(options.degrees);
    toPicture.scale(scale, scale);
    toPicture.translate(-paper.width / 2, -paper.height / 2);
    QPainter painter(&large);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toPicture * QTransform::fromScale(finer, finer));
    QPainterPath sheet;
    sheet.addRoundedRect(QRectF(0, 0, paper.width, paper.height), 3, 3);
    QLinearGradient wash(0, 0, paper.width, paper.height);
    wash.setColorAt(0, pastel(dice));
    wash.setColorAt(1, pastel(dice));
    painter.fillPath(sheet, wash);
    painter.setClipPath(sheet);
    paintGuilloche(painter, paper, options.isPoor, dice);
    if (dice.unit() < 0.5) // Many documents keep the zone free of it, or nearly so.
        painter.fillRect(
            QRectF(0, paper.level - 5, paper.width, paper.height), QColor(255, 255, 255, int(dice.real(100, 250))));
    paintUpperPart(painter, *fonts, paper, dice);
    paintZone(painter, *fonts, lines, paper, options.isPoor, dice);
    painter.end();

    const cv::Mat drawn(large.height(), large.width(), CV_8UC4, large.bits(), std::size_t(large.bytesPerLine()));
    cv::Mat scan;
    cv::resize(drawn, scan, { options.width, height }, 0, 0, cv::INTER_AREA);
    if (options.blur > 0.05)
        cv::GaussianBlur(scan, scan, {}, options.blur);
    if (options.noise > 0) {
        cv::RNG random(options.seed);
        cv::Mat grain(scan.size(), CV_16SC4);
        random.fill(grain, cv::RNG::NORMAL, 0, options.noise);
        cv::add(scan, grain, scan, cv::noArray(), CV_8U);
    }
    Page page;
    page.picture = QImage(scan.data, scan.cols, scan.rows, qsizetype(scan.step), QImage::Format_RGB32).copy();
    const QRectF zone(paper.left, paper.level - 2.54, paper.pitch * double(lines.value(0).size()),
        2.54 + paper.apart * double(lines.size() - 1));
    page.zone = toPicture.map(QPolygonF({ zone.topLeft(), zone.topRight(), zone.bottomRight(), zone.bottomLeft() }));
    return page;
}

} // namespace kelvara::ocrb
