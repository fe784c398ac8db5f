#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"

#include "Platform/Capture/AVCaptureSession.h"
#include "Platform/Capture/FrameBufferPool.h"
#include "Platform/Capture/FrameTurner.h"
#include "Platform/Foundation/MainQueue.h"

#include <QPainter>

#include <mutex>

namespace kelvara {

namespace {

/// The picture as an image over the same bytes.
QImage wrapped(const CVPixelBuffer& picture)
{
    using Owner = std::shared_ptr<const void>;
    return QImage(
        picture.baseAddress(), picture.width(), picture.height(), static_cast<qsizetype>(picture.bytesPerRow()),
        QImage::Format_RGB32, [](void* owner) { delete static_cast<Owner*>(owner); }, new Owner(picture.owner()));
}

} // namespace

struct AVCaptureVideoPreviewLayer::State
{
    QPointer<AVCaptureSession> session;
    AVLayerVideoGravity gravity = AVLayerVideoGravity::ResizeAspect;
    QRectF frame;
    /// Made on the main thread before the first picture can come; never taken away again.
    std::unique_ptr<AVCaptureConnection> connection;

    /// The newest picture, handed from the device's thread to the main thread.
    mutable std::mutex mutex;
    std::optional<CVPixelBuffer> newest;
    bool paintedMirrored = false; ///< The picture still has to be mirrored, which painting does for nothing.
    bool displayPending = false;

    FrameBufferPool pool;
    LifeToken life;
};

AVCaptureVideoPreviewLayer::AVCaptureVideoPreviewLayer(AVCaptureSession* session, QObject* parent)
    : QObject(parent), d(std::make_unique<State>())
{
    d->session = session;
    if (session)
        session->attachPreview(this);
}

AVCaptureVideoPreviewLayer::~AVCaptureVideoPreviewLayer()
{
    if (d->session)
        d->session->detachPreview(this);
}

void AVCaptureVideoPreviewLayer::setVideoGravity(AVLayerVideoGravity gravity)
{
    d->gravity = gravity;
}

AVLayerVideoGravity AVCaptureVideoPreviewLayer::videoGravity() const
{
    return d->gravity;
}

void AVCaptureVideoPreviewLayer::setFrame(const QRectF& frame)
{
    d->frame = frame;
}

QRectF AVCaptureVideoPreviewLayer::frame() const
{
    return d->frame;
}

AVCaptureConnection* AVCaptureVideoPreviewLayer::connection() const
{
    return d->connection.get();
}

PreviewMapping AVCaptureVideoPreviewLayer::mapping() const
{
    PreviewMapping mapping { .bounds = d->frame, .gravity = d->gravity };
    if (d->connection) {
        mapping.rotation = d->connection->rotation();
        mapping.mirrored = d->connection->isVideoMirrored();
    }
    return mapping;
}

QRectF AVCaptureVideoPreviewLayer::metadataOutputRectOfInterest(const QRectF& layerRect) const
{
    const std::lock_guard lock(d->mutex);
    return d->newest ? mapping().metadataOutputRectOfInterest(layerRect, d->newest->size()) : QRectF();
}

void AVCaptureVideoPreviewLayer::paint(QPainter& painter) const
{
    std::optional<CVPixelBuffer> picture;
    bool mirror = false;
    {
        const std::lock_guard lock(d->mutex);
        picture = d->newest;
        mirror = d->paintedMirrored;
    }
    if (!picture)
        return;
    const QRectF place = mapping().pictureRect(picture->size());
    const QRectF visible = place.intersected(d->frame);
    if (visible.isEmpty())
        return;
    // Only what shows is touched: the visible part of the picture goes onto its place in the layer.
    const double scale = picture->width() / place.width();
    const double scaleDown = picture->height() / place.height();
    QRectF source((visible.x() - place.x()) * scale, (visible.y() - place.y()) * scaleDown, visible.width() * scale,
        visible.height() * scaleDown);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QRectF target = visible;
    if (mirror) {
        const double axis = 2 * place.center().x();
        painter.setTransform(QTransform(-1, 0, 0, 1, axis, 0), true);
        target.moveLeft(axis - visible.right());
        source.moveLeft(picture->width() - source.right());
    }
    painter.drawImage(target, wrapped(*picture), source);
    painter.restore();
}

QImage AVCaptureVideoPreviewLayer::image() const
{
    const std::lock_guard lock(d->mutex);
    if (!d->newest)
        return {};
    const QImage image = wrapped(*d->newest);
    return d->paintedMirrored ? image.mirrored(true, false) : image;
}

void AVCaptureVideoPreviewLayer::deliver(const CMSampleBuffer& frame)
{
    FrameTurner turner(frame, d->pool);
    deliver(turner);
}

void AVCaptureVideoPreviewLayer::deliver(FrameTurner& frame)
{
    const int rotation = d->connection ? d->connection->rotation() : 0;
    const bool mirrored = d->connection && d->connection->isVideoMirrored();
    auto picture = frame.alreadyTurned(rotation, mirrored);
    const bool mirror = !picture && mirrored;
    if (!picture)
        picture = frame.turned(rotation, false);
    if (!picture || !isReadable(*picture))
        return;
    {
        const std::lock_guard lock(d->mutex);
        d->newest.swap(picture);
        d->paintedMirrored = mirror;
        if (std::exchange(d->displayPending, true))
            return;
    }
    MainQueue::async(d->life.token(), [this] {
        {
            const std::lock_guard lock(d->mutex);
            d->displayPending = false;
        }
        Q_EMIT needsDisplay();
    });
}

void AVCaptureVideoPreviewLayer::inputChanged(bool hasInput, bool frontCamera, int sensorRotation)
{
    if (!hasInput)
        return;
    if (!d->connection) {
        d->connection = std::make_unique<AVCaptureConnection>();
        d->connection->setVideoOrientation(AVCaptureVideoOrientation::Portrait);
    }
    d->connection->setSensorRotation(sensorRotation);
    d->connection->setVideoMirrored(frontCamera);
}

} // namespace kelvara
