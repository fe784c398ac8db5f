#pragma once

#include "Kelvara/DimmingOverlay.h"

#include <QRectF>

#include <optional>

namespace kelvara {

/// Dims the preview around an oval of 300 × 400 points in the middle. The oval does not scale: on a smaller view it
/// reaches beyond the bounds. Main thread.
class OvalOverlayView final : public DimmingOverlay
{
    Q_OBJECT

public:
    explicit OvalOverlayView(QWidget* parent = nullptr);
    explicit OvalOverlayView(const QRect& frame, QWidget* parent = nullptr);

    /// The rectangle around the oval in this view's points (origin top-left, not rounded) as last drawn; absent until
    /// then. Written by `draw` only.
    std::optional<QRectF> overlayFrame;

    void draw(const QRectF& rect) override;

private:
    [[nodiscard]] QRectF calculateCutoutRect() const;
    void drawOvalCutout();
};

} // namespace kelvara
