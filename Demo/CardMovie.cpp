#include "Demo/CardMovie.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvara::demo {

namespace {

constexpr std::chrono::microseconds kArrivalTime { 800000 };

QPointF plateOrigin()
{
    return QPointF(-kShakeMargin, -kShakeMargin);
}

/// Narrows about the vertical line through `centre`.
QTransform narrowed(const QPointF& centre, double factor)
{
    return QTransform::fromTranslate(-centre.x(), 0) * QTransform::fromScale(factor, 1)
        * QTransform::fromTranslate(centre.x(), 0);
}

} // namespace

CardMovie::CardMovie(QSize frame, QImage backdrop, std::function<HandShake(double seconds)> shake)
    : m_frame(frame), m_backdrop(std::move(backdrop)), m_shake(std::move(shake))
{ }

void CardMovie::show(std::shared_ptr<const MovieClip> clip, Arrival arrival)
{
    const std::lock_guard lock(m_mutex);
    m_act = { m_act.now, std::move(clip), arrival, std::nullopt, false };
}

bool CardMovie::settled() const
{
    const std::lock_guard lock(m_mutex);
    return m_act.settled;
}

CardMovie::Act CardMovie::actAt(std::chrono::microseconds time)
{
    const std::lock_guard lock(m_mutex);
    if (!m_act.settled) {
        if (!m_act.begin || time < *m_act.begin)
            m_act.begin = time; // the camera was started anew
        m_act.settled = time - *m_act.begin >= kArrivalTime;
    }
    return m_act;
}

void CardMovie::draw(QImage& image, std::chrono::microseconds time)
{
    const Act act = actAt(time);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);

    const HandShake hand = m_shake ? m_shake(static_cast<double>(time.count()) / 1e6) : HandShake();
    const QPointF centre(m_frame.width() / 2.0, m_frame.height() / 2.0);
    painter.translate(centre + hand.shift);
    painter.rotate(hand.rollDegrees);
    painter.translate(-centre);

    if (act.settled && act.now) {
        drawWhole(painter, *act.now);
        return;
    }
    drawBackdrop(painter);
    if (!act.now)
        return;
    const double part = static_cast<double>((time - *act.begin).count()) / static_cast<double>(kArrivalTime.count());
    if (act.arrival == Arrival::TurnsOver) {
        const double width = std::max(0.01, std::abs(std::cos(part * std::numbers::pi)));
        if (const auto& side = part < 0.5 ? act.before : act.now)
            drawMoving(painter, *side, narrowed(centre, width));
    } else if (act.now->outline.isEmpty()) {
        painter.setOpacity(part);
        drawMoving(painter, *act.now, QTransform());
    } else {
        const double left = 0.5 * (1 + std::cos(part * std::numbers::pi));
        drawMoving(painter, *act.now, QTransform::fromTranslate(0, left * m_frame.height()));
    }
}

void CardMovie::drawBackdrop(QPainter& painter) const
{
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(plateOrigin(), m_backdrop);
}

void CardMovie::drawWhole(QPainter& painter, const MovieClip& clip) const
{
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (!clip.live) {
        painter.drawImage(plateOrigin(), clip.plate);
        return;
    }
    painter.save();
    painter.resetTransform(); // a film brings its own unsteady hand
    painter.fillRect(QRect(QPoint(), m_frame), clip.margin);
    painter.setTransform(clip.liveToFrame);
    painter.drawImage(QPointF(), clip.live());
    painter.restore();
}

void CardMovie::drawMoving(QPainter& painter, const MovieClip& clip, const QTransform& movement) const
{
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setTransform(movement, true);
    if (clip.outline.isEmpty()) {
        painter.setClipRect(QRectF(QPointF(), m_frame));
        if (!clip.live)
            painter.drawImage(plateOrigin(), clip.plate);
        else {
            painter.setTransform(clip.liveToFrame * movement);
            painter.drawImage(QPointF(), clip.live());
        }
    } else {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipPath(clip.outline.translated(plateOrigin()));
        painter.drawImage(plateOrigin(), clip.plate);
    }
    painter.restore();
}

} // namespace kelvara::demo
