#pragma once

#include "Platform/Capture/ReplayCamera.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace kelvara {

/// A replay camera's thread: takes pictures from the source at the frame rate, has them made into frames and delivers
/// these. Internal; main thread unless said otherwise.
class ReplayProducer
{
public:
    ReplayProducer(ReplaySource source, ReplayCameraOptions options);
    ~ReplayProducer();

    /// What is called, on the producer's thread, when a source that does not loop has shown its last picture. To be
    /// set before the first start.
    void setEnded(std::function<void()> ended) { m_ended = std::move(ended); }

    /// False while already started, while disconnected, or when the source cannot be used.
    [[nodiscard]] bool start(AVCaptureFrameSink sink);
    /// Waits until the thread has ended.
    void stop();

    void setSource(ReplaySource source);
    [[nodiscard]] std::optional<QString> problem() const;
    void setStalled(bool stalled);
    /// False when that was so already.
    bool setConnected(bool connected);
    [[nodiscard]] bool isConnected() const;

    /// Any thread.
    [[nodiscard]] std::int64_t deliveredFrames() const { return m_delivered.load(); }

private:
    struct Pass;
    void run(const AVCaptureFrameSink& sink);
    [[nodiscard]] QImage nextPicture(Pass& pass) const;

    const ReplayCameraOptions m_options;
    std::function<void()> m_ended;
    std::atomic<std::int64_t> m_delivered { 0 };

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    ReplaySource m_source;
    bool m_sourceChanged = false;
    bool m_stopping = false;
    bool m_stalled = false;
    bool m_connected = true;

    std::thread m_thread;
};

} // namespace kelvara
