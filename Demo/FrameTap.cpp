#include "Demo/FrameTap.h"

#include "Demo/FrameImage.h"

#include <QElapsedTimer>
#include <QTransform>

#include <mutex>

namespace kelvara::demo {

struct FrameTap::Seen
{
    mutable std::mutex mutex;
    QElapsedTimer clock; ///< Since the first frame of this run.
    CMSampleBuffer last;
    QSize size;
    qint64 frames = 0;
    qint64 intervals = 0;
    qint64 earlierNanoseconds = 0; ///< Of the runs before this one.
    qint64 nanoseconds = 0; ///< Of this run, up to its last frame.

    void note(const CMSampleBuffer& delivery)
    {
        const std::lock_guard lock(mutex);
        ++frames;
        if (clock.isValid()) {
            nanoseconds = clock.nsecsElapsed();
            ++intervals;
        } else {
            clock.start();
        }
        if (!delivery.imageBuffer())
            return;
        last = delivery;
        size = delivery.imageBuffer()->size();
    }

    void endRun()
    {
        const std::lock_guard lock(mutex);
        last = {};
        earlierNanoseconds += nanoseconds;
        nanoseconds = 0;
        clock.invalidate();
    }
};

FrameTap::FrameTap(std::shared_ptr<AVCaptureDevice> camera)
    : m_camera(std::move(camera)), m_seen(std::make_shared<Seen>())
{
    connect(m_camera.get(), &AVCaptureDevice::connectedChanged, this, &AVCaptureDevice::connectedChanged);
}

FrameTap::~FrameTap() = default;

bool FrameTap::start(AVCaptureFrameSink sink)
{
    m_seen->endRun();
    return m_camera->start([seen = m_seen, sink = std::move(sink)](const CMSampleBuffer& delivery) {
        seen->note(delivery);
        sink(delivery);
    });
}

void FrameTap::stop()
{
    m_camera->stop();
    m_seen->endRun();
}

qint64 FrameTap::frames() const
{
    const std::lock_guard lock(m_seen->mutex);
    return m_seen->frames;
}

double FrameTap::framesPerSecond() const
{
    const std::lock_guard lock(m_seen->mutex);
    const qint64 nanoseconds = m_seen->earlierNanoseconds + m_seen->nanoseconds;
    return nanoseconds > 0 ? static_cast<double>(m_seen->intervals) * 1e9 / static_cast<double>(nanoseconds) : 0;
}

QSize FrameTap::frameSize() const
{
    const std::lock_guard lock(m_seen->mutex);
    return m_seen->size;
}

QImage FrameTap::lastFrame() const
{
    CMSampleBuffer last;
    {
        const std::lock_guard lock(m_seen->mutex);
        last = m_seen->last;
    }
    const QImage image = frameImage(last);
    return sensorRotation() == 0 ? image : image.transformed(QTransform().rotate(sensorRotation()));
}

} // namespace kelvara::demo
