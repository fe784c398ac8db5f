#pragma once

#include "Platform/Capture/FrameBufferPool.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace kelvara {

class AVCaptureVideoDataOutput;
class AVCaptureVideoPreviewLayer;
class CMSampleBuffer;

/// Where a running device's frames arrive and are passed on: to every preview layer and every output. Shared between
/// the session and the device's sink, so that a device that goes on sending finds a closed gate and no dead object.
/// Internal; the mutex is held while one frame is passed on, which never calls out of this room.
class CaptureHub
{
public:
    /// Opens the gate for a new run and returns its number; frames of earlier runs are dropped from now on.
    [[nodiscard]] std::uint64_t open();

    /// Closes the gate. When it returns, no frame is being passed on and none will be.
    void close();

    void setReceivers(std::vector<std::shared_ptr<AVCaptureVideoDataOutput>> outputs,
        std::vector<AVCaptureVideoPreviewLayer*> previews);

    /// A frame of that run. Any thread, one call at a time.
    void deliver(std::uint64_t run, const CMSampleBuffer& frame);

private:
    std::mutex m_mutex;
    std::uint64_t m_runs = 0;
    bool m_open = false;
    std::vector<std::shared_ptr<AVCaptureVideoDataOutput>> m_outputs;
    std::vector<AVCaptureVideoPreviewLayer*> m_previews;
    FrameBufferPool m_pool;
};

} // namespace kelvara
