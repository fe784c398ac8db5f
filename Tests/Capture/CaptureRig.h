#pragma once

#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/AVCaptureDeviceInput.h"
#include "Platform/Capture/AVCaptureSession.h"
#include "Platform/Capture/AVCaptureVideoDataOutput.h"
#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"
#include "Platform/Capture/ReplayCamera.h"
#include "Platform/Foundation/SerialQueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace kelvara::test {

/// Runs the event loop until the condition holds; false after ten seconds.
inline bool waitFor(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 10000)
            return false;
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// The frame as an image of its own.
inline QImage imageOf(const CVPixelBuffer& picture)
{
    return QImage(picture.baseAddress(), picture.width(), picture.height(),
        static_cast<qsizetype>(picture.bytesPerRow()), QImage::Format_ARGB32)
        .copy();
}

/// A delegate that counts, keeps the newest frame, and does on the queue what a test asks for.
class Delegate final : public AVCaptureVideoDataOutputSampleBufferDelegate
{
public:
    void captureOutput(AVCaptureVideoDataOutput&, const CMSampleBuffer& sampleBuffer, AVCaptureConnection&) override
    {
        {
            const std::lock_guard lock(m_mutex);
            ++m_count;
            m_newest = sampleBuffer.imageBuffer();
        }
        if (onFrame)
            onFrame(sampleBuffer);
    }

    [[nodiscard]] int count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }

    [[nodiscard]] CVPixelBuffer newest() const
    {
        const std::lock_guard lock(m_mutex);
        return m_newest.value_or(CVPixelBuffer());
    }

    [[nodiscard]] bool waitForFrames(int more)
    {
        const int wanted = count() + more;
        return waitFor([&] { return count() >= wanted; });
    }

    std::function<void(const CMSampleBuffer&)> onFrame; ///< On the queue. Set before the first frame.

private:
    mutable std::mutex m_mutex;
    int m_count = 0;
    std::optional<CVPixelBuffer> m_newest;
};

/// A session with a camera, an output with a delegate and a preview, put together as a view does it.
struct Rig
{
    explicit Rig(std::shared_ptr<AVCaptureDevice> device) : camera(std::move(device))
    {
        QObject::connect(
            session.get(), &AVCaptureSession::runningChanged, [this](bool running) { told.push_back(running); });
        session->beginConfiguration();
        input = AVCaptureDeviceInput::make(camera);
        session->addInput(input);
        output->setSampleBufferDelegate(&delegate, queue.get());
        session->addOutput(output);
        preview->setVideoGravity(AVLayerVideoGravity::ResizeAspectFill);
        session->commitConfiguration();
    }

    ~Rig()
    {
        if (output)
            output->setSampleBufferDelegate(nullptr, nullptr);
        queue->drain();
    }

    void switchTo(const std::shared_ptr<AVCaptureDevice>& device)
    {
        session->beginConfiguration();
        session->removeInput(input);
        input = AVCaptureDeviceInput::make(device);
        session->addInput(input);
        session->commitConfiguration();
    }

    std::shared_ptr<AVCaptureDevice> camera;
    Delegate delegate;
    std::unique_ptr<SerialQueue> queue = std::make_unique<SerialQueue>(QStringLiteral("videoQueue"));
    std::unique_ptr<AVCaptureSession> session = std::make_unique<AVCaptureSession>();
    std::shared_ptr<AVCaptureVideoDataOutput> output = std::make_shared<AVCaptureVideoDataOutput>();
    std::unique_ptr<AVCaptureVideoPreviewLayer> preview = std::make_unique<AVCaptureVideoPreviewLayer>(session.get());
    std::shared_ptr<AVCaptureInput> input;
    std::vector<bool> told;
};

/// A picture whose four quarters and size tell how it was turned and mirrored: red top left, green top right, blue
/// bottom left, white bottom right.
inline QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const bool right = x >= (size.width() + 1) / 2;
            const bool low = y >= (size.height() + 1) / 2;
            image.setPixel(x, y, low ? (right ? 0xffffffff : 0xff0000ff) : (right ? 0xff00ff00 : 0xffff0000));
        }
    return image;
}

/// The letters of the quarters, row by row: "RGBW" for the picture as made.
inline std::string quartersOf(const QImage& image)
{
    std::string letters;
    for (const auto& [fx, fy] : { std::pair(1, 1), std::pair(3, 1), std::pair(1, 3), std::pair(3, 3) }) {
        const QColor color = image.pixelColor(image.width() * fx / 4, image.height() * fy / 4);
        const bool red = color.red() > 127;
        const bool green = color.green() > 127;
        const bool blue = color.blue() > 127;
        letters += red && green && blue ? 'W' : red ? 'R' : green ? 'G' : blue ? 'B' : '?';
    }
    return letters;
}

inline std::shared_ptr<ReplayCamera> stillCamera(const QImage& image, ReplayCameraOptions options = {})
{
    options.framesPerSecond = 200;
    return std::make_shared<ReplayCamera>(ReplaySource::still(image), options);
}

} // namespace kelvara::test
