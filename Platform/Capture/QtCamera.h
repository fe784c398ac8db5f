#pragma once

#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/LedTorch.h"

#include <QByteArray>
#include <QTimer>

#include <memory>
#include <optional>

namespace kelvara {

class QtCameraStream;

/// A real camera through Qt Multimedia, serving at one position. It delivers upright pictures: what a frame says of
/// its turning is done here. Internal; main thread.
class QtCamera final : public AVCaptureDevice
{
    Q_OBJECT
public:
    /// `torch` lights for this camera where Qt Multimedia offers none; absent: nothing does.
    QtCamera(QByteArray id, QString name, AVCaptureDevicePosition position, std::optional<LedTorch> torch);
    ~QtCamera() override;

    [[nodiscard]] QString uniqueID() const override { return QString::fromUtf8(m_id); }
    [[nodiscard]] QString localizedName() const override { return m_name; }
    [[nodiscard]] AVCaptureDevicePosition position() const override { return m_position; }
    [[nodiscard]] bool isConnected() const override { return m_plugged && !m_failed; }

    [[nodiscard]] bool hasTorch() const override;
    [[nodiscard]] bool isTorchActive() const override;
    [[nodiscard]] bool setTorchModeOn(float level) override;
    void setTorchModeOff() override;

    [[nodiscard]] bool start(AVCaptureFrameSink sink) override;
    void stop() override;

    // Told by the provider when cameras come and go.
    void setUniqueID(const QString& id) { m_id = id.toUtf8(); }
    void setPlugged(bool plugged);

private:
    void fail();
    void change(bool plugged, bool failed);

    QByteArray m_id;
    const QString m_name;
    const AVCaptureDevicePosition m_position;
    std::optional<LedTorch> m_torch;
    bool m_lit = false; ///< The LED torch was lit by this camera.
    bool m_plugged = true;
    bool m_failed = false;
    std::shared_ptr<QtCameraStream> m_stream;
    QTimer m_recovery;
};

} // namespace kelvara
