#include "Kelvara/FlipImageView.h"

#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>

#include <algorithm>

namespace kelvara {

namespace {

constexpr int kDelayMilliseconds = 400;
constexpr int kTurnMilliseconds = 1700;

} // namespace

FlipImageView::FlipImageView(QWidget* parent) : QWidget(parent), m_animation(new QVariantAnimation(this))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    constexpr double whole = kDelayMilliseconds + 2 * kTurnMilliseconds;
    m_animation->setDuration(static_cast<int>(whole));
    m_animation->setKeyValueAt(0, 1.0);
    m_animation->setKeyValueAt(kDelayMilliseconds / whole, 1.0);
    m_animation->setKeyValueAt((kDelayMilliseconds + kTurnMilliseconds) / whole, -1.0);
    m_animation->setKeyValueAt(1, 1.0);
    connect(m_animation, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(m_animation, &QVariantAnimation::finished, this, [this] { setAlpha(0); });
}

void FlipImageView::setImage(const std::optional<ControlImage>& image)
{
    m_image = image;
    update();
}

void FlipImageView::setAlpha(double alpha)
{
    m_alpha = std::clamp(alpha, 0.0, 1.0);
    update();
}

void FlipImageView::flip()
{
    setAlpha(1);
    m_transform = QTransform::fromScale(-1, 1);
    m_animation->stop();
    m_animation->start();
}

double FlipImageView::paintedScale() const
{
    return m_animation->state() == QAbstractAnimation::Running ? m_animation->currentValue().toDouble()
                                                               : m_transform.m11();
}

void FlipImageView::paintEvent(QPaintEvent*)
{
    const double scale = paintedScale();
    if (!m_image || m_alpha <= 0 || qFuzzyIsNull(scale))
        return;
    QPainter painter(this);
    painter.setOpacity(m_alpha);
    const QPointF middle = QRectF(rect()).center();
    painter.translate(middle);
    painter.scale(scale, 1);
    painter.translate(-middle);
    m_image->paint(painter, rect(), {});
}

} // namespace kelvara
