#include "Platform/Capture/AVCaptureVideoDataOutput.h"

#include "Platform/Capture/FrameBufferPool.h"
#include "Platform/Capture/FrameTurner.h"
#include "Platform/Foundation/SerialQueue.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace kelvara {

namespace {

/// What the blocks on the delegate's queue share with the output: they may outlive it.
struct Core
{
    std::mutex mutex;
    AVCaptureVideoDataOutput* output = nullptr; ///< Null once the output is gone.
    AVCaptureVideoDataOutputSampleBufferDelegate* delegate = nullptr;
    SerialQueue* queue = nullptr;
    /// Counts what makes queued frames worthless: another delegate, a session that stopped.
    std::uint64_t generation = 0;

    std::thread::id caller; ///< The thread that is inside the delegate.
    std::condition_variable returned;

    /// A frame is queued for the delegate or with it.
    std::atomic<bool> busy { false };

    AVCaptureConnection connection;
    FrameBufferPool pool;

    /// On the delegate's queue.
    void hand(const CMSampleBuffer& frame, std::uint64_t queuedIn)
    {
        AVCaptureVideoDataOutputSampleBufferDelegate* receiver = nullptr;
        AVCaptureVideoDataOutput* sender = nullptr;
        {
            const std::lock_guard lock(mutex);
            if (generation == queuedIn && output) {
                receiver = delegate;
                sender = output;
                caller = std::this_thread::get_id();
            }
        }
        if (receiver) {
            receiver->captureOutput(*sender, frame, connection);
            const std::lock_guard lock(mutex);
            caller = {};
            returned.notify_all();
        }
        busy = false;
    }
};

} // namespace

struct AVCaptureVideoDataOutput::State
{
    std::shared_ptr<Core> core = std::make_shared<Core>();
    bool attached = false;
    bool discardsLate = true;
};

AVCaptureVideoDataOutput::AVCaptureVideoDataOutput() : d(std::make_unique<State>())
{
    d->core->output = this;
}

AVCaptureVideoDataOutput::~AVCaptureVideoDataOutput()
{
    std::unique_lock lock(d->core->mutex);
    d->core->output = nullptr;
    d->core->delegate = nullptr;
    d->core->queue = nullptr;
    // The delegate was given a reference to this object: it may finish with it.
    d->core->returned.wait(lock,
        [this] { return d->core->caller == std::thread::id {} || d->core->caller == std::this_thread::get_id(); });
}

void AVCaptureVideoDataOutput::setPixelFormat(std::uint32_t) { }

std::uint32_t AVCaptureVideoDataOutput::pixelFormat() const
{
    return kCVPixelFormatType_32BGRA;
}

void AVCaptureVideoDataOutput::setAlwaysDiscardsLateVideoFrames(bool discards)
{
    d->discardsLate = discards;
}

bool AVCaptureVideoDataOutput::alwaysDiscardsLateVideoFrames() const
{
    return d->discardsLate;
}

void AVCaptureVideoDataOutput::setSampleBufferDelegate(
    AVCaptureVideoDataOutputSampleBufferDelegate* delegate, SerialQueue* queue)
{
    const std::lock_guard lock(d->core->mutex);
    d->core->delegate = queue ? delegate : nullptr;
    d->core->queue = delegate ? queue : nullptr;
    ++d->core->generation;
}

AVCaptureConnection* AVCaptureVideoDataOutput::firstConnection() const
{
    return d->attached ? &d->core->connection : nullptr;
}

bool AVCaptureVideoDataOutput::isAttached() const
{
    return d->attached;
}

void AVCaptureVideoDataOutput::attach()
{
    d->attached = true;
    d->core->connection.setVideoOrientation(AVCaptureVideoOrientation::LandscapeRight);
    d->core->connection.setVideoMirrored(false);
    d->core->connection.setSensorRotation(0);
}

void AVCaptureVideoDataOutput::detach()
{
    d->attached = false;
    dropQueued();
}

void AVCaptureVideoDataOutput::dropQueued()
{
    const std::lock_guard lock(d->core->mutex);
    ++d->core->generation;
}

void AVCaptureVideoDataOutput::deliver(const CMSampleBuffer& frame)
{
    FrameTurner turner(frame, d->core->pool);
    deliver(turner);
}

void AVCaptureVideoDataOutput::deliver(FrameTurner& frame)
{
    Core& core = *d->core;
    if (core.busy)
        return;
    std::uint64_t generation = 0;
    {
        const std::lock_guard lock(core.mutex);
        if (!core.queue)
            return;
        generation = core.generation;
    }
    // A delivery without a picture is told to the delegate as it is.
    CMSampleBuffer turned = frame.frame();
    if (turned.imageBuffer()) {
        auto picture = frame.turned(core.connection.rotation(), core.connection.isVideoMirrored());
        if (!picture)
            return;
        turned = CMSampleBuffer(std::move(*picture), turned.presentationTime());
    }
    const std::lock_guard lock(core.mutex);
    if (core.generation != generation || core.busy.exchange(true))
        return;
    core.queue->async([shared = d->core, turned = std::move(turned), generation] { shared->hand(turned, generation); });
}

} // namespace kelvara
