#include "Kelvara/DimmingOverlay.h"

#include "Kelvara/PaintScale.h"

#include <QPaintEvent>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

constexpr double kDimAlpha = 0.45;
constexpr double kBorderWidth = 8.0;
/// Of the strips in which the frame is sorted: lower ones follow its outline closer but cost more calls.
constexpr int kStripHeight = 32;

/// What lies around `hole` in `area`: above, below, left and right. The hole must lie inside.
std::array<QRect, 4> around(const QRect& area, const QRect& hole)
{
    return { QRect(area.topLeft(), QPoint(area.right(), hole.top() - 1)),
        QRect(QPoint(area.left(), hole.bottom() + 1), area.bottomRight()),
        QRect(QPoint(area.left(), hole.top()), QPoint(hole.left() - 1, hole.bottom())),
        QRect(QPoint(hole.right() + 1, hole.top()), QPoint(area.right(), hole.bottom())) };
}

enum class Filling { Clear, Dim, Mixed };

Filling fillingOf(QRgb pixel, QRgb dim)
{
    if (qAlpha(pixel) == 0)
        return Filling::Clear;
    return pixel == dim ? Filling::Dim : Filling::Mixed;
}

} // namespace

DimmingOverlay::DimmingOverlay(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
}

QColor DimmingOverlay::backgroundColor()
{
    return QColor::fromRgbF(0.0F, 0.0F, 0.0F, static_cast<float>(kDimAlpha));
}

ShapeLayer* DimmingOverlay::firstSublayer() const
{
    return m_sublayers.empty() ? nullptr : m_sublayers.front().get();
}

void DimmingOverlay::removeSublayers()
{
    m_sublayers.clear();
    m_mask.reset();
}

void DimmingOverlay::install(const QPainterPath& outline, const QColor& fill)
{
    QPainterPath visible = outline;
    visible.addRect(rect());
    visible.setFillRule(Qt::OddEvenFill);
    m_mask = std::make_unique<ShapeLayer>();
    m_mask->setPath(visible);

    auto border = std::make_unique<ShapeLayer>([this] { forgetFrame(); });
    border->setPath(outline);
    border->setFillColor(fill);
    border->setStrokeColor(Qt::white);
    border->setLineWidth(kBorderWidth);
    m_sublayers.push_back(std::move(border));

    m_drawnSize = size();
    forgetFrame();
    Q_EMIT drawn();
}

void DimmingOverlay::forgetFrame()
{
    m_frame = QImage();
    update();
}

void DimmingOverlay::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    drawIfResized();
}

void DimmingOverlay::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    drawIfResized();
}

void DimmingOverlay::drawIfResized()
{
    // Qt also announces a size when an overlay is added anew; its border must keep its colour then.
    if (!m_mask || size() != m_drawnSize)
        draw(rect());
}

QImage DimmingOverlay::composed(const QTransform& toPixels, const QRect& pixels) const
{
    const QTransform toImage = toPixels * QTransform::fromTranslate(-pixels.left(), -pixels.top());
    const auto prepare = [&toImage](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setTransform(toImage);
    };
    QImage visible(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    visible.fill(Qt::transparent);
    {
        QPainter painter(&visible);
        prepare(painter);
        m_mask->paint(painter);
    }
    QImage image(visible.size(), visible.format());
    image.fill(backgroundColor());
    QPainter painter(&image);
    prepare(painter);
    for (const auto& layer : m_sublayers)
        layer->paint(painter);
    painter.resetTransform();
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, visible);
    return image;
}

void DimmingOverlay::sortFrame()
{
    m_dimPieces.clear();
    m_mixedPieces.clear();
    const QRgb dim = qPremultiply(backgroundColor().rgba());
    const int width = m_frame.width();
    std::vector<Filling> columns(static_cast<std::size_t>(width));
    for (int top = 0; top < m_frame.height(); top += kStripHeight) {
        const int height = std::min(kStripHeight, m_frame.height() - top);
        for (int y = top; y < top + height; ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(m_frame.constScanLine(y));
            for (int x = 0; x < width; ++x) {
                const Filling filling = fillingOf(line[x], dim);
                if (y == top)
                    columns[x] = filling;
                else if (columns[x] != filling)
                    columns[x] = Filling::Mixed;
            }
        }
        for (int x = 0, start = 0; x < width; ++x) {
            if (x + 1 < width && columns[x + 1] == columns[start])
                continue;
            if (columns[start] != Filling::Clear)
                (columns[start] == Filling::Dim ? m_dimPieces : m_mixedPieces)
                    .emplace_back(start, top, x + 1 - start, height);
            start = x + 1;
        }
    }
}

void DimmingOverlay::paintEvent(QPaintEvent*)
{
    if (!m_mask)
        return;
    QPainter painter(this);
    const QTransform device = painter.deviceTransform();
    if (device.type() > QTransform::TxScale) {
        // Turned or sheared by whoever renders the view: there is no pixel grid to keep an image for.
        const double ratio = pixelsPerPoint(painter);
        const QRect pixels(0, 0, qCeil(width() * ratio), qCeil(height() * ratio));
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(rect()), composed(QTransform::fromScale(ratio, ratio), pixels),
            QRectF(0, 0, width() * ratio, height() * ratio));
        return;
    }

    // From here on in whole device pixels; where the view lies matters only by the fraction of a pixel.
    const QPoint shift(qFloor(device.dx()), qFloor(device.dy()));
    const QTransform toPixels = device * QTransform::fromTranslate(-shift.x(), -shift.y());
    const QRect bounds = toPixels.mapRect(QRectF(rect())).toAlignedRect();
    if (m_frame.isNull() || toPixels != m_frameTransform) {
        const double reach = kBorderWidth / 2 + 1;
        const QRectF bordered = firstSublayer()->path().boundingRect().adjusted(-reach, -reach, reach, reach);
        m_frameRect = toPixels.mapRect(bordered).toAlignedRect() & bounds;
        m_frame = composed(toPixels, m_frameRect);
        m_frameTransform = toPixels;
        sortFrame();
    }

    painter.setWorldTransform(QTransform::fromTranslate(shift.x(), shift.y()) * device.inverted());
    const QColor dim = backgroundColor();
    for (const QRect& part : around(bounds, m_frameRect))
        painter.fillRect(part, dim);
    painter.translate(m_frameRect.topLeft());
    for (const QRect& piece : m_dimPieces)
        painter.fillRect(piece, dim);
    for (const QRect& piece : m_mixedPieces)
        painter.drawImage(piece.topLeft(), m_frame, piece);
}

} // namespace kelvara
