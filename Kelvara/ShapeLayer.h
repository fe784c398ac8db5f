#pragma once

#include <QColor>
#include <QPainterPath>

#include <functional>

class QPainter;

namespace kelvara {

/// A path that is filled and stroked: what overlays are made of. Coordinates are its overlay's, in points, origin
/// top-left. The colours start as the platform's do: filled opaque black, not stroked, one point wide. Main thread.
class ShapeLayer
{
public:
    /// `changed` is called after every change of what is seen.
    explicit ShapeLayer(std::function<void()> changed = {});
    ShapeLayer(const ShapeLayer&) = delete;
    ShapeLayer& operator=(const ShapeLayer&) = delete;
    ~ShapeLayer() = default;

    /// Carries its fill rule: even-odd or winding.
    [[nodiscard]] const QPainterPath& path() const { return m_path; }
    void setPath(const QPainterPath& path);
    [[nodiscard]] QColor fillColor() const { return m_fillColor; }
    void setFillColor(const QColor& color);
    /// An invalid colour does not stroke.
    [[nodiscard]] QColor strokeColor() const { return m_strokeColor; }
    void setStrokeColor(const QColor& color);
    /// Half of it lies on either side of the path.
    [[nodiscard]] double lineWidth() const { return m_lineWidth; }
    void setLineWidth(double width);

    /// Paints fill, then stroke, with the painter's own transform and render hints.
    void paint(QPainter& painter) const;

private:
    template<typename T> void assign(T& member, const T& value);

    QPainterPath m_path;
    QColor m_fillColor = Qt::black;
    QColor m_strokeColor;
    double m_lineWidth = 1.0;
    std::function<void()> m_changed;
};

} // namespace kelvara
