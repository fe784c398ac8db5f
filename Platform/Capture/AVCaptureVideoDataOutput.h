#pragma once

#include "Platform/Capture/AVCaptureConnection.h"
#include "Platform/Capture/CMSampleBuffer.h"

#include <memory>

namespace kelvara {

class SerialQueue;
class AVCaptureVideoDataOutput;
class FrameTurner;

/// Receives the frames of a video data output on the output's queue.
class AVCaptureVideoDataOutputSampleBufferDelegate
{
public:
    virtual ~AVCaptureVideoDataOutputSampleBufferDelegate() = default;
    virtual void captureOutput(
        AVCaptureVideoDataOutput& output, const CMSampleBuffer& sampleBuffer, AVCaptureConnection& connection)
        = 0;
};

/// Hands a session's frames to a delegate on a serial queue, turned and mirrored as its connection asks. A frame that
/// arrives while one is with the delegate is dropped: nothing is ever queued behind it.
class AVCaptureVideoDataOutput
{
public:
    AVCaptureVideoDataOutput();
    ~AVCaptureVideoDataOutput();

    /// Pixel format of the delivered buffers; `kCVPixelFormatType_32BGRA` is the only one there is. Others are
    /// ignored. Main thread.
    void setPixelFormat(std::uint32_t fourCharacterCode);
    [[nodiscard]] std::uint32_t pixelFormat() const;

    /// Always true in effect (see above); kept so that a caller can say so. Main thread.
    void setAlwaysDiscardsLateVideoFrames(bool discards);
    [[nodiscard]] bool alwaysDiscardsLateVideoFrames() const;

    /// Who receives the frames, and on which queue. Both borrowed: after `setSampleBufferDelegate(nullptr, nullptr)`
    /// and a drain of the old queue, no call is under way and none follows. Main thread.
    void setSampleBufferDelegate(AVCaptureVideoDataOutputSampleBufferDelegate* delegate, SerialQueue* queue);

    /// The connection to the session's input, or null before the output was added to a session. It stays the same
    /// object while the output belongs to the session, whatever input comes and goes. Main thread.
    [[nodiscard]] AVCaptureConnection* firstConnection() const;

    // For the session.
    [[nodiscard]] bool isAttached() const;
    void attach();
    void detach();
    /// Drops the frame that waits in the delegate's queue, if there is one. Main thread.
    void dropQueued();
    /// A new frame in the device's axes. Any thread, one call at a time.
    void deliver(const CMSampleBuffer& frame);
    void deliver(FrameTurner& frame);

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
