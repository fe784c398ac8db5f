#include "Platform/Capture/QtCameraStream.h"

#include "Platform/Capture/QtFrameMill.h"

#include <QCoreApplication>
#include <QMediaDevices>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace kelvara {

namespace {

/// The stream that was let go last, until the event loop turns.
std::shared_ptr<QtCameraStream>& parked()
{
    static std::shared_ptr<QtCameraStream> stream;
    return stream;
}

} // namespace

QtCameraStream::QtCameraStream(const QCameraDevice& device) : m_mill(std::make_shared<QtFrameMill>()), m_camera(device)
{
    // Direct, as some back ends deliver on threads of their own: the mill takes frames on any.
    connect(
        &m_sink, &QVideoSink::videoFrameChanged, this,
        [mill = m_mill](const QVideoFrame& frame) { mill->offer(frame); }, Qt::DirectConnection);
    connect(&m_camera, &QCamera::errorOccurred, this, &QtCameraStream::failed);
    // In this order: with the sink joined to a camera that is there already, about every third start of the GStreamer
    // back end delivers nothing.
    m_session.setVideoSink(&m_sink);
    m_session.setCamera(&m_camera);
}

QtCameraStream::~QtCameraStream()
{
    m_mill->close();
    m_sink.disconnect(this);
    m_camera.disconnect(this);
    m_camera.stop();
    m_session.setVideoSink(nullptr);
    m_session.setCamera(nullptr);
}

std::shared_ptr<QtCameraStream> QtCameraStream::open(const QByteArray& id)
{
    auto waiting = std::exchange(parked(), nullptr);
    if (waiting && waiting->m_camera.cameraDevice().id() == id && waiting->m_camera.isActive())
        return waiting;
    waiting = nullptr;
    // Without a device the back end would deliver a test picture.
    for (const QCameraDevice& device : QMediaDevices::videoInputs()) {
        if (device.id() != id)
            continue;
        auto stream = std::make_shared<QtCameraStream>(device);
        stream->m_camera.start();
        const bool open = stream->m_camera.isActive() && stream->m_camera.error() == QCamera::NoError;
        return open ? stream : nullptr;
    }
    return nullptr;
}

void QtCameraStream::park(std::shared_ptr<QtCameraStream> stream)
{
    stream->deliverToNobody();
    static QPointer<QCoreApplication> watched;
    static bool quitting = false;
    QCoreApplication* const application = QCoreApplication::instance();
    if (application && watched != application) {
        // An application that ends closes the camera before it is gone.
        watched = application;
        quitting = false;
        const auto quit = [] {
            quitting = true;
            parked() = nullptr;
        };
        connect(application, &QCoreApplication::aboutToQuit, application, quit);
        qAddPostRoutine(quit);
    }
    if (!application || quitting)
        return;
    parked() = std::move(stream);
    QTimer::singleShot(0, application, [] { parked() = nullptr; });
}

void QtCameraStream::deliverTo(AVCaptureFrameSink sink)
{
    m_mill->open(std::move(sink));
}

void QtCameraStream::deliverToNobody()
{
    m_mill->close();
}

} // namespace kelvara
