#pragma once

#include <QAnimationDriver>
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QWidget>

namespace kelvara::test {

/// A widget (and what it stands in) as it looks over a colour at a pixel ratio.
inline QImage painted(QWidget& widget, double pixelRatio, const QColor& over)
{
    QImage image((QSizeF(widget.size()) * pixelRatio).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(over);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    image.setDevicePixelRatio(1);
    return image;
}

/// Animations run by this clock while it lives: they are where they are at exactly the time a test says.
class AnimationClock final : public QAnimationDriver
{
public:
    AnimationClock() { install(); }
    ~AnimationClock() override
    {
        stop();
        uninstall();
    }
    qint64 elapsed() const override { return m_now; }

    /// Small steps, as what starts within one is part of the next.
    void pass(int milliseconds)
    {
        for (int step = 0; milliseconds > 0; milliseconds -= step) {
            QCoreApplication::processEvents();
            step = qMin(milliseconds, 50);
            m_now += step;
            advanceAnimation();
        }
        QCoreApplication::processEvents();
    }

protected:
    void start() override
    {
        m_now = 0; // It counts from the moment that something begins to move.
        QAnimationDriver::start();
    }

private:
    qint64 m_now = 0;
};

} // namespace kelvara::test
