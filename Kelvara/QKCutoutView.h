#pragma once

#include "Kelvara/DimmingOverlay.h"

#include <QRectF>

#include <optional>

namespace kelvara {

/// Dims the preview around a card-shaped cut-out: a rounded rectangle of ratio 1.42 in the middle, 90 % of the width
/// of an upright view or 75 % of the height of a lying or square one. Main thread.
class QKCutoutView final : public DimmingOverlay
{
    Q_OBJECT

public:
    explicit QKCutoutView(QWidget* parent = nullptr);
    explicit QKCutoutView(const QRect& frame, QWidget* parent = nullptr);

    /// The cut-out in this view's points (origin top-left, not rounded) as last drawn; absent until then. Written by
    /// `draw` only.
    std::optional<QRectF> cutoutRect;

    void draw(const QRectF& rect) override;

private:
    [[nodiscard]] QRectF calculateCutoutRect() const;
    void drawRectangleCutout();
};

} // namespace kelvara
