#pragma once

#include "Platform/Capture/AVCaptureDevice.h"

#include <QCamera>
#include <QMediaCaptureSession>
#include <QObject>
#include <QVideoSink>

#include <memory>

namespace kelvara {

class QtFrameMill;

/// One opened camera of Qt Multimedia. Internal; main thread.
///
/// Opening a camera takes long, and a camera that serves at both positions is stopped at one and started at the other
/// in one go. So a stream that was let go stays open until the event loop turns, and is taken up again by whoever
/// asks for the same camera before that.
class QtCameraStream : public QObject
{
    Q_OBJECT
public:
    explicit QtCameraStream(const QCameraDevice& device);
    ~QtCameraStream() override;

    /// The parked stream of that camera, or a new one; null when there is no such camera or it cannot be opened.
    [[nodiscard]] static std::shared_ptr<QtCameraStream> open(const QByteArray& id);
    /// Lets go of a stream.
    static void park(std::shared_ptr<QtCameraStream> stream);

    void deliverTo(AVCaptureFrameSink sink);
    /// When it returns, no call of the sink is under way and none follows.
    void deliverToNobody();

    [[nodiscard]] QCamera& camera() { return m_camera; }

Q_SIGNALS:
    /// The camera has failed while open.
    void failed();

private:
    /// Shared with the frame handler, which fires even while all this is torn down.
    std::shared_ptr<QtFrameMill> m_mill;
    QVideoSink m_sink;
    QCamera m_camera;
    QMediaCaptureSession m_session;
};

} // namespace kelvara
