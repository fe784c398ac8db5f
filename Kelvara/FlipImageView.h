#pragma once

#include "Kelvara/ControlImage.h"

#include <QTransform>
#include <QWidget>

#include <optional>

class QVariantAnimation;

namespace kelvara {

/// The hint that the card is to be turned over: an image with an alpha and a horizontal scale of its own, both painted.
/// Invisible at first. It lets every mouse and touch event through. Main thread.
class FlipImageView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double alpha READ alpha)

public:
    explicit FlipImageView(QWidget* parent = nullptr);

    [[nodiscard]] const std::optional<ControlImage>& image() const { return m_image; }
    void setImage(const std::optional<ControlImage>& image);

    /// 0 (initially) to 1.
    [[nodiscard]] double alpha() const { return m_alpha; }
    void setAlpha(double alpha);

    /// What the view is scaled by when no animation runs. `flip` makes it a horizontal mirror, for good.
    [[nodiscard]] const QTransform& transform() const { return m_transform; }

    /// Shows the image, turns it over after 0.4 s (1.7 s there and 1.7 s back) and hides it again. Each hint begins
    /// unmirrored; one that still runs starts again.
    void flip();

    /// The horizontal scale that is painted now: 1 to −1.
    [[nodiscard]] double paintedScale() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<ControlImage> m_image;
    double m_alpha = 0;
    QTransform m_transform;
    QVariantAnimation* const m_animation;
};

} // namespace kelvara
