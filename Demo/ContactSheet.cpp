#include "Demo/ContactSheet.h"

#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace kelvara::demo {

namespace {

constexpr int kColumns = 7;
constexpr int kWidth = 300; ///< Of a screen on the sheet, in pixels.
constexpr int kGap = 36;
constexpr int kTitle = 110;
constexpr int kCaption = 46;
constexpr double kCorner = 22;

QFont letters(int pixels, bool bold)
{
    QFont font;
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

void drawScreen(QPainter& painter, const QRectF& place, const SheetEntry& screen)
{
    QPainterPath outline;
    outline.addRoundedRect(place, kCorner, kCorner);
    painter.save();
    painter.setClipPath(outline);
    painter.drawImage(place, screen.image);
    painter.restore();
    painter.setPen(QPen(QColor(0, 0, 0, 40), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline);
    painter.setPen(QColor(0x33, 0x45, 0x4f));
    painter.setFont(letters(19, false));
    QString name = screen.name;
    name.replace(QLatin1Char('-'), QLatin1Char(' '));
    painter.drawText(QRectF(place.left() - kGap / 2.0, place.bottom() + 8, place.width() + kGap, kCaption),
        Qt::AlignHCenter | Qt::AlignTop, name);
}

} // namespace

SheetEntry sheetEntry(const QString& name, const QImage& screen)
{
    QImage small = screen.scaledToWidth(kWidth, Qt::SmoothTransformation);
    small.setDevicePixelRatio(1);
    return { name, small };
}

QImage contactSheet(const QString& title, const QList<SheetEntry>& screens)
{
    if (screens.isEmpty())
        return {};
    const QSize first = screens.front().image.size();
    const int height = kWidth * first.height() / std::max(1, first.width());
    const int columns = std::min<int>(kColumns, static_cast<int>(screens.size()));
    const int rows = static_cast<int>((screens.size() + columns - 1) / columns);
    QImage sheet(columns * (kWidth + kGap) + kGap, kTitle + rows * (height + kCaption + kGap / 2) + kGap / 2,
        QImage::Format_RGB32);
    QPainter painter(&sheet);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QLinearGradient paper(0, 0, 0, sheet.height());
    paper.setColorAt(0, QColor(0xf6, 0xfa, 0xfb));
    paper.setColorAt(1, QColor(0xe3, 0xec, 0xef));
    painter.fillRect(sheet.rect(), paper);
    painter.setPen(QColor(0x0f, 0x20, 0x2a));
    painter.setFont(letters(34, true));
    painter.drawText(QRect(kGap, 0, sheet.width() - 2 * kGap, kTitle), Qt::AlignVCenter | Qt::AlignLeft, title);
    for (int i = 0; i < screens.size(); ++i) {
        const int row = i / columns;
        const QPoint corner(kGap + (i % columns) * (kWidth + kGap), kTitle + row * (height + kCaption + kGap / 2));
        drawScreen(painter, QRectF(corner, QSizeF(kWidth, height)), screens[i]);
    }
    return sheet;
}

} // namespace kelvara::demo
