#include "Platform/Capture/QtFrameMill.h"

#include "Platform/Capture/QtFrame.h"

#include <utility>

namespace kelvara {

void QtFrameMill::open(AVCaptureFrameSink sink)
{
    const std::lock_guard lock(m_mutex);
    m_sink = std::move(sink);
    m_opened = std::chrono::steady_clock::now();
}

void QtFrameMill::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_sink = nullptr;
        m_waiting = {};
    }
    m_queue.drain();
}

void QtFrameMill::offer(const QVideoFrame& frame)
{
    // Late frames come when the camera has long been stopped, and one that says nothing at the very end.
    if (!frame.isValid())
        return;
    const std::lock_guard lock(m_mutex);
    if (!m_sink)
        return;
    m_waiting = frame;
    if (!std::exchange(m_queued, true))
        m_queue.async([this] { work(); });
}

void QtFrameMill::work()
{
    QVideoFrame frame;
    AVCaptureFrameSink sink;
    std::chrono::steady_clock::time_point opened;
    {
        const std::lock_guard lock(m_mutex);
        m_queued = false;
        frame = std::exchange(m_waiting, {});
        sink = m_sink;
        opened = m_opened;
    }
    if (!sink || !frame.isValid())
        return;
    using std::chrono::microseconds;
    const auto time = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - opened);
    if (auto picture = pictureOf(frame, m_converter))
        sink(CMSampleBuffer(std::move(*picture), time));
}

} // namespace kelvara
