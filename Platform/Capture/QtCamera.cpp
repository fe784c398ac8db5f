#include "Platform/Capture/QtCamera.h"

#include "Platform/Capture/QtCameraStream.h"

#include <utility>

namespace kelvara {

namespace {

/// How long a camera that failed while running is left alone before it is tried again.
constexpr std::chrono::seconds kRecovery { 2 };

} // namespace

QtCamera::QtCamera(QByteArray id, QString name, AVCaptureDevicePosition position, std::optional<LedTorch> torch)
    : m_id(std::move(id)), m_name(std::move(name)), m_position(position), m_torch(std::move(torch))
{
    m_recovery.setSingleShot(true);
    m_recovery.setInterval(kRecovery);
    connect(&m_recovery, &QTimer::timeout, this, [this] { change(m_plugged, false); });
}

QtCamera::~QtCamera()
{
    stop();
}

bool QtCamera::hasTorch() const
{
    return (m_stream && m_stream->camera().isTorchModeSupported(QCamera::TorchOn)) || (m_torch && m_torch->exists());
}

bool QtCamera::isTorchActive() const
{
    if (m_stream && m_stream->camera().torchMode() == QCamera::TorchOn)
        return true;
    return m_torch && m_torch->isOn();
}

bool QtCamera::setTorchModeOn(float level)
{
    if (!(level > 0.0F && level <= 1.0F))
        return false;
    if (m_stream && m_stream->camera().isTorchModeSupported(QCamera::TorchOn)) {
        m_stream->camera().setTorchMode(QCamera::TorchOn);
        return m_stream->camera().torchMode() == QCamera::TorchOn;
    }
    if (!m_torch || !m_torch->turnOn(level))
        return false;
    m_lit = true;
    return true;
}

void QtCamera::setTorchModeOff()
{
    if (m_stream && m_stream->camera().torchMode() != QCamera::TorchOff)
        m_stream->camera().setTorchMode(QCamera::TorchOff);
    if (m_torch)
        m_torch->turnOff();
    m_lit = false;
}

bool QtCamera::start(AVCaptureFrameSink sink)
{
    if (m_stream || !isConnected())
        return false;
    m_stream = QtCameraStream::open(m_id);
    if (!m_stream)
        return false;
    // Queued: what the receivers do may close the stream that is just telling of its failure.
    connect(m_stream.get(), &QtCameraStream::failed, this, &QtCamera::fail, Qt::QueuedConnection);
    m_stream->deliverTo(std::move(sink));
    return true;
}

void QtCamera::stop()
{
    // A light goes with the pictures that it is for, as a camera's own does: cameras that were handed out once are
    // kept to the end of the process, and what the kernel was told to light outlives even that.
    if (m_lit)
        setTorchModeOff();
    if (!m_stream)
        return;
    m_stream->disconnect(this);
    QtCameraStream::park(std::exchange(m_stream, nullptr));
}

void QtCamera::setPlugged(bool plugged)
{
    m_recovery.stop();
    change(plugged, false);
}

void QtCamera::fail()
{
    if (!m_stream)
        return;
    m_recovery.start();
    change(m_plugged, true);
}

void QtCamera::change(bool plugged, bool failed)
{
    const bool before = isConnected();
    m_plugged = plugged;
    m_failed = failed;
    if (isConnected() != before)
        Q_EMIT connectedChanged(!before);
}

} // namespace kelvara
