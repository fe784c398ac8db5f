#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QTransform>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace kelvara::demo {

/// By how many pixels a still is larger than the frame on every side, so that a shaking hand shows no edge.
inline constexpr int kShakeMargin = 48;

/// What a camera sees while one thing is held before it. Immutable once shown.
struct MovieClip
{
    /// A still, `kShakeMargin` larger than the frame on every side.
    QImage plate;
    /// The card in the plate's pixels: what moves when it comes and turns. Empty: the whole picture.
    QPainterPath outline;
    /// Instead of a still: the picture of the moment, and where it goes in the frame.
    std::function<QImage()> live;
    QTransform liveToFrame;
    QColor margin; ///< Around it.
};

/// How the hand moves: where the picture is shifted to and turned at a time.
struct HandShake
{
    QPointF shift;
    double rollDegrees = 0;
};

/// A camera's picture, moment by moment: clips held in an unsteady hand, that come or are turned over. Any thread;
/// `draw` is for one thread.
class CardMovie
{
public:
    /// A card slides in from below; a whole picture fades in.
    enum class Arrival { Comes, TurnsOver };

    /// `backdrop` (as large as a clip's plate) is what is seen when nothing is held before the camera.
    CardMovie(QSize frame, QImage backdrop, std::function<HandShake(double seconds)> shake);

    void show(std::shared_ptr<const MovieClip> clip, Arrival arrival);
    /// Whether the clip shown last has arrived.
    [[nodiscard]] bool settled() const;

    /// Draws the picture at `time` since the camera's start, into an image of the frame's size.
    void draw(QImage& image, std::chrono::microseconds time);
    [[nodiscard]] QSize size() const { return m_frame; }

private:
    struct Act
    {
        std::shared_ptr<const MovieClip> before;
        std::shared_ptr<const MovieClip> now;
        Arrival arrival = Arrival::Comes;
        std::optional<std::chrono::microseconds> begin; ///< Set by the first frame of the arrival.
        bool settled = true;
    };

    [[nodiscard]] Act actAt(std::chrono::microseconds time);
    void drawWhole(QPainter& painter, const MovieClip& clip) const;
    void drawBackdrop(QPainter& painter) const;
    void drawMoving(QPainter& painter, const MovieClip& clip, const QTransform& movement) const;

    const QSize m_frame;
    const QImage m_backdrop;
    const std::function<HandShake(double)> m_shake;

    mutable std::mutex m_mutex; ///< Over `m_act` only.
    Act m_act;
};

} // namespace kelvara::demo
