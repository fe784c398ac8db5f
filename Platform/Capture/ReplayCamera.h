#pragma once

#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/CameraProvider.h"
#include "Platform/Foundation/Export.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace kelvara {

/// How a replayed picture's pixels lie in memory before they reach the session, so that the conversions that real
/// cameras need are used too.
enum class ReplayPixelLayout { BGRA, NV12, I420, YUYV, MJPEG };

/// Makes the picture of one moment: `index` counts the pictures from 0, `time` is the time since the first. Both begin
/// again with each start of the camera, and when the source loops. A null image ends the source. 32-bit opaque images
/// are delivered without a copy. Called on the camera's own thread, one call at a time; stopping the camera waits for
/// it, so it must not wait for the main thread.
using ReplayGenerator = std::function<QImage(std::int64_t index, std::chrono::microseconds time)>;

/// Where a replay camera's pictures come from. A value.
class KELVARA_EXPORT ReplaySource
{
public:
    /// No source; it has a problem.
    ReplaySource() = default;

    /// One picture, shown for ever. Exif orientation is honoured.
    [[nodiscard]] static ReplaySource still(const QString& path);
    [[nodiscard]] static ReplaySource still(const QImage& image);
    /// The pictures of a folder in the order of their names.
    [[nodiscard]] static ReplaySource folder(const QString& path);
    /// A video file.
    [[nodiscard]] static ReplaySource video(const QString& path);
    /// Whatever the path is: a folder, a video or a still.
    [[nodiscard]] static ReplaySource path(const QString& path);
    /// Pictures made as they are wanted. Each run of a camera calls a copy of its own, which ends with the run.
    [[nodiscard]] static ReplaySource generator(ReplayGenerator generator);

    /// A sentence that says why the source cannot be used; absent when it can. Files are opened for it, once. Any
    /// thread.
    [[nodiscard]] std::optional<QString> problem() const;

    struct Data;
    [[nodiscard]] const std::shared_ptr<const Data>& data() const { return m_data; }

private:
    explicit ReplaySource(std::shared_ptr<const Data> data) : m_data(std::move(data)) { }
    std::shared_ptr<const Data> m_data;
};

/// How a replay camera presents itself and its pictures.
struct ReplayCameraOptions
{
    QString name = QStringLiteral("Replay camera");
    AVCaptureDevicePosition position = AVCaptureDevicePosition::Back;
    /// Size of the delivered pictures; a source of another size is scaled to fill it and cut about its centre. Empty:
    /// the size of the source's own pictures.
    QSize size {};
    /// How many pictures are delivered in a second, whatever a video file says of itself; when making one takes too
    /// long, moments are left out. 0 or less: as fast as they can be made.
    double framesPerSecond = 30.0;
    ReplayPixelLayout layout = ReplayPixelLayout::BGRA;
    /// Extra bytes at the end of each row, as real drivers have them.
    int rowPadding = 0;
    /// Begin again when the source ends; otherwise the last picture stands still and `ended` is emitted.
    bool loops = true;
    /// Degrees clockwise that the delivered pictures need to stand upright in portrait, as a phone's sensor; the
    /// source's pictures are turned back by as much.
    int sensorRotation = 0;
    bool hasTorch = false;
};

/// A camera without hardware: for hosts' tests, demonstrations and replaying what went wrong. Delivers its source at a
/// frame rate through the same conversions as a real camera. Each start begins the source anew. A camera whose source
/// has a problem refuses to start. Main thread unless said otherwise.
class KELVARA_EXPORT ReplayCamera final : public AVCaptureDevice
{
    Q_OBJECT
public:
    explicit ReplayCamera(ReplaySource source, ReplayCameraOptions options = {}, QObject* parent = nullptr);
    ~ReplayCamera() override;

    [[nodiscard]] QString uniqueID() const override;
    [[nodiscard]] QString localizedName() const override;
    [[nodiscard]] AVCaptureDevicePosition position() const override;
    [[nodiscard]] bool isConnected() const override;
    [[nodiscard]] int sensorRotation() const override;
    [[nodiscard]] bool isInUseByAnotherApplication() const override;
    [[nodiscard]] bool supportsVideoDataOutput() const override;
    [[nodiscard]] bool hasTorch() const override;
    [[nodiscard]] bool isTorchActive() const override;
    [[nodiscard]] bool lockForConfiguration() override;
    void unlockForConfiguration() override;
    [[nodiscard]] bool setTorchModeOn(float level) override;
    void setTorchModeOff() override;
    [[nodiscard]] bool start(AVCaptureFrameSink sink) override;
    void stop() override;

    /// Shows another source from the next frame on.
    void setSource(ReplaySource source);

    // Trouble on demand.
    /// Delivers nothing while stalled, yet stays connected.
    void setStalled(bool stalled);
    /// Unplugs the camera, or plugs it in again.
    void setConnected(bool connected);
    /// The next `start` calls fail while set.
    void setRefusesToStart(bool refuses);
    /// Another application holds the camera: no session takes it as an input, and `start` fails.
    void setInUseByAnotherApplication(bool inUse);
    /// `lockForConfiguration` fails while set; so does `setTorchModeOn`, respectively.
    void setRefusesConfiguration(bool refuses);
    void setRefusesTorch(bool refuses);
    /// A session with this camera takes no video data output while set.
    void setRefusesVideoDataOutput(bool refuses);
    /// How often the configuration was locked and not yet unlocked.
    [[nodiscard]] int configurationLocks() const;

    /// Frames delivered since construction. Any thread.
    [[nodiscard]] std::int64_t deliveredFrames() const;

Q_SIGNALS:
    /// A source that does not loop has shown its last picture.
    void ended();

private:
    struct State;
    std::unique_ptr<State> d;
};

/// Hands out replay cameras (or any devices) by position. Main thread.
class KELVARA_EXPORT ReplayCameraProvider final : public CameraProvider
{
public:
    ReplayCameraProvider() = default;
    /// Either may be null: a device without that camera. A view starts its cameras only where it has both, whatever
    /// its steps are: hosts' tests of a card alone give a still to the front camera.
    ReplayCameraProvider(std::shared_ptr<AVCaptureDevice> back, std::shared_ptr<AVCaptureDevice> front);

    [[nodiscard]] std::shared_ptr<AVCaptureDevice> defaultDevice(
        AVCaptureDeviceType type, AVMediaType media, AVCaptureDevicePosition position) override;
    [[nodiscard]] std::shared_ptr<AVCaptureDevice> defaultDevice(AVMediaType media) override;

private:
    std::shared_ptr<AVCaptureDevice> m_back;
    std::shared_ptr<AVCaptureDevice> m_front;
};

} // namespace kelvara
