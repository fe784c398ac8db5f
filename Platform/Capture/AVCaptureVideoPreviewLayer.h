#pragma once

#include "Platform/Capture/AVCaptureConnection.h"
#include "Platform/Capture/AVCaptureTypes.h"
#include "Platform/Capture/PreviewMapping.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QRectF>

#include <memory>

class QPainter;

namespace kelvara {

class AVCaptureSession;
class CMSampleBuffer;
class FrameTurner;

/// Shows a session's pictures. Not a widget: the view that holds the layer paints it at the bottom of its own
/// `paintEvent` and repaints when `needsDisplay` fires. Main thread, but for `deliver`.
class AVCaptureVideoPreviewLayer : public QObject
{
    Q_OBJECT
public:
    explicit AVCaptureVideoPreviewLayer(AVCaptureSession* session = nullptr, QObject* parent = nullptr);
    ~AVCaptureVideoPreviewLayer() override;

    void setVideoGravity(AVLayerVideoGravity gravity);
    [[nodiscard]] AVLayerVideoGravity videoGravity() const;

    /// The layer's place in the view (origin top-left, points).
    void setFrame(const QRectF& frame);
    [[nodiscard]] QRectF frame() const;

    /// The connection to the session's input; null while the session never had one. It outlives a lost camera. The
    /// picture of a front camera is mirrored on it, and it turns as a portrait interface needs.
    [[nodiscard]] AVCaptureConnection* connection() const;

    /// The layer's present conversion as a value that may cross to another thread.
    [[nodiscard]] PreviewMapping mapping() const;

    /// `mapping().metadataOutputRectOfInterest` for the picture last shown (null before the first).
    [[nodiscard]] QRectF metadataOutputRectOfInterest(const QRectF& layerRect) const;

    /// Paints the newest picture into `frame()`, aspect as `videoGravity` says; nothing before the first picture.
    void paint(QPainter& painter) const;

    /// The picture last shown, turned and mirrored; null before the first.
    [[nodiscard]] QImage image() const;

    // For the session: a new picture in the device's axes. Any thread, one call at a time.
    void deliver(const CMSampleBuffer& frame);
    void deliver(FrameTurner& frame);
    void inputChanged(bool hasInput, bool frontCamera, int sensorRotation);

Q_SIGNALS:
    /// A new picture wants painting. At most one is pending at a time. Main thread.
    void needsDisplay();

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
