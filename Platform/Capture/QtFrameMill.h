#pragma once

#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/FrameConverter.h"
#include "Platform/Foundation/SerialQueue.h"

#include <QVideoFrame>

#include <chrono>
#include <mutex>

namespace kelvara {

/// Takes Qt Multimedia's frames on whatever thread they come, converts them on a thread of its own and hands them to
/// a sink. Of frames that come faster than they are converted only the newest counts. Internal.
class QtFrameMill
{
public:
    /// From now on frames go to `sink`. Main thread.
    void open(AVCaptureFrameSink sink);

    /// When it returns, no call of the sink is under way and none follows. Main thread.
    void close();

    /// A new frame. Any thread.
    void offer(const QVideoFrame& frame);

private:
    void work();

    std::mutex m_mutex;
    AVCaptureFrameSink m_sink;
    QVideoFrame m_waiting;
    bool m_queued = false; ///< Work on the waiting frame is queued.
    std::chrono::steady_clock::time_point m_opened;

    FrameConverter m_converter; ///< The queue's own.
    SerialQueue m_queue { QStringLiteral("cameraQueue"), QualityOfService::UserInteractive };
};

} // namespace kelvara
