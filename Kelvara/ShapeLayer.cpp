#include "Kelvara/ShapeLayer.h"

#include <QPainter>
#include <QPen>

#include <utility>

namespace kelvara {

ShapeLayer::ShapeLayer(std::function<void()> changed) : m_changed(std::move(changed)) { }

template<typename T> void ShapeLayer::assign(T& member, const T& value)
{
    if (member == value)
        return;
    member = value;
    if (m_changed)
        m_changed();
}

void ShapeLayer::setPath(const QPainterPath& path)
{
    assign(m_path, path);
}
void ShapeLayer::setFillColor(const QColor& color)
{
    assign(m_fillColor, color);
}
void ShapeLayer::setStrokeColor(const QColor& color)
{
    assign(m_strokeColor, color);
}
void ShapeLayer::setLineWidth(double width)
{
    assign(m_lineWidth, width);
}

void ShapeLayer::paint(QPainter& painter) const
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_fillColor);
    painter.drawPath(m_path);
    if (m_strokeColor.isValid())
        painter.strokePath(m_path, QPen(m_strokeColor, m_lineWidth));
}

} // namespace kelvara
