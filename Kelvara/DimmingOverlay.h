#pragma once

#include "Kelvara/ShapeLayer.h"

#include <QImage>
#include <QTransform>
#include <QWidget>

#include <memory>
#include <vector>

namespace kelvara {

/// A view over the camera preview that dims everything but a clear cut-out and frames the cut-out with a border. It
/// lets every mouse and touch event through.
///
/// Drawing and painting are two things. `draw` computes the cut-out from the bounds and rebuilds mask and border,
/// the border white again; it runs when the overlay is first shown, whenever its size has changed by the time it is
/// shown, and when it is called. Painting happens with every preview frame and only composites what was drawn: the dim
/// as filled rectangles and the border from a kept image. All coordinates are points, origin top-left. Main thread.
class DimmingOverlay : public QWidget
{
    Q_OBJECT

public:
    /// What the preview is dimmed with: black at 45 %.
    [[nodiscard]] static QColor backgroundColor();

    /// Computes the cut-out, replaces the mask, rebuilds the border. The rectangle is ignored.
    virtual void draw(const QRectF& rect) = 0;

    /// The layers that `draw` made, lowest first; the first is the border. Borrowed, until the next `draw`.
    [[nodiscard]] const std::vector<std::unique_ptr<ShapeLayer>>& sublayers() const { return m_sublayers; }
    /// The border; null until the first `draw`. Setting its stroke colour repaints.
    [[nodiscard]] ShapeLayer* firstSublayer() const;
    /// What is seen of the overlay: the bounds without the cut-out. Null until the first `draw`.
    [[nodiscard]] const ShapeLayer* maskLayer() const { return m_mask.get(); }

Q_SIGNALS:
    /// The cut-out was computed anew.
    void drawn();

protected:
    explicit DimmingOverlay(QWidget* parent);

    /// Forgets the layers of the last drawing.
    void removeSublayers();
    /// Takes a cut-out: `outline` is cleared from the dim and stroked; the border is filled with `fill`, which the mask
    /// hides.
    void install(const QPainterPath& outline, const QColor& fill);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void drawIfResized();
    void forgetFrame();
    void sortFrame();
    /// The given device pixels as they are to be composited: dim and border, seen through the mask.
    [[nodiscard]] QImage composed(const QTransform& toPixels, const QRect& pixels) const;

    std::unique_ptr<ShapeLayer> m_mask;
    std::vector<std::unique_ptr<ShapeLayer>> m_sublayers;
    QSize m_drawnSize;

    // The border and its surroundings, rendered for one position on the pixel grid, and sorted into pieces that are
    // merely dim, pieces that need the image, and the rest, which is clear.
    QImage m_frame;
    QRect m_frameRect;
    QTransform m_frameTransform;
    std::vector<QRect> m_dimPieces;
    std::vector<QRect> m_mixedPieces;
};

} // namespace kelvara
