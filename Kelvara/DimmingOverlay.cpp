#include "Kelvara/DimmingOverlay.h"

#include "Kelvara/PaintScale.h"

#include <QPaintEvent>

#include <array>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

constexpr double kDimAlpha = 0.45;
constexpr double kBorderWidth = 8.0;

/// The whole pixels that lie inside.
QRect insideAligned(const QRectF& rect)
{
    const QPoint topLeft(static_cast<int>(std::ceil(rect.left())), static_cast<int>(std::ceil(rect.top())));
    const QPoint end(static_cast<int>(std::floor(rect.right())), static_cast<int>(std::floor(rect.bottom())));
    return { topLeft, QPoint(end.x() - 1, end.y() - 1) };
}

/// What lies around `hole` in `area`: above, below, left and right. The hole must lie inside.
std::array<QRect, 4> around(const QRect& area, const QRect& hole)
{
    if (hole.isEmpty())
        return { area, QRect(), QRect(), QRect() };
    return { QRect(area.topLeft(), QPoint(area.right(), hole.top() - 1)),
        QRect(QPoint(area.left(), hole.bottom() + 1), area.bottomRight()),
        QRect(QPoint(area.left(), hole.top()), QPoint(hole.left() - 1, hole.bottom())),
        QRect(QPoint(hole.right() + 1, hole.top()), QPoint(area.right(), hole.bottom())) };
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

void DimmingOverlay::install(const QPainterPath& outline, const QRectF& clear, const QColor& fill)
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

    m_clear = clear;
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
    QImage visible(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    visible.fill(Qt::transparent);
    QImage image(visible.size(), visible.format());
    image.fill(backgroundColor());
    for (auto [target, layers] : { std::pair(&visible, false), std::pair(&image, true) }) {
        QPainter painter(target);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setTransform(toImage);
        if (!layers) {
            m_mask->paint(painter);
            continue;
        }
        for (const auto& layer : m_sublayers)
            layer->paint(painter);
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.drawImage(0, 0, visible);
    }
    return image;
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
    }
    const QRect clear = insideAligned(toPixels.mapRect(m_clear)) & m_frameRect;

    painter.setWorldTransform(QTransform::fromTranslate(shift.x(), shift.y()) * device.inverted());
    const QColor dim = backgroundColor();
    for (const QRect& part : around(bounds, m_frameRect)) {
        if (!part.isEmpty())
            painter.fillRect(part, dim);
    }
    for (const QRect& part : around(m_frameRect, clear)) {
        if (!part.isEmpty())
            painter.drawImage(part.topLeft(), m_frame, part.translated(-m_frameRect.topLeft()));
    }
}

} // namespace kelvara
