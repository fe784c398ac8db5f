#include "Platform/Capture/ReplayProducer.h"

#include "Platform/Capture/ReplayFramer.h"
#include "Platform/Capture/ReplaySourceData.h"

#include <cmath>
#include <utility>

namespace kelvara {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

} // namespace

/// Where the thread stands in its source. Its thread's own.
struct ReplayProducer::Pass
{
    std::shared_ptr<const ReplaySource::Data> source;
    std::unique_ptr<ReplayReader> reader;
    std::unique_ptr<ReplayFramer> framer;
    std::int64_t index = 0; ///< Of the next picture of this pass.
    microseconds begin {}; ///< When the pass began, since the start.
    microseconds now {}; ///< When the next picture is due, since the start.
    QImage last;
    bool ended = false;

    /// Begins anew, at the next picture.
    void rewind()
    {
        reader = source ? source->open() : nullptr;
        index = 0;
        begin = now;
    }
};

ReplayProducer::ReplayProducer(ReplaySource source, ReplayCameraOptions options)
    : m_options(std::move(options)), m_source(std::move(source))
{ }

ReplayProducer::~ReplayProducer()
{
    stop();
}

bool ReplayProducer::start(AVCaptureFrameSink sink)
{
    if (m_thread.joinable())
        return false;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_connected || m_source.problem())
            return false;
        m_stopping = false;
        m_sourceChanged = true;
    }
    m_thread = std::thread([this, sink = std::move(sink)] { run(sink); });
    return true;
}

void ReplayProducer::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void ReplayProducer::setSource(ReplaySource source)
{
    const std::lock_guard lock(m_mutex);
    std::swap(m_source, source);
    m_sourceChanged = true;
}

std::optional<QString> ReplayProducer::problem() const
{
    const std::lock_guard lock(m_mutex);
    return m_source.problem();
}

void ReplayProducer::setStalled(bool stalled)
{
    {
        const std::lock_guard lock(m_mutex);
        m_stalled = stalled;
    }
    m_changed.notify_all();
}

bool ReplayProducer::setConnected(bool connected)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_connected, connected) == connected)
            return false;
    }
    m_changed.notify_all();
    return true;
}

bool ReplayProducer::isConnected() const
{
    const std::lock_guard lock(m_mutex);
    return m_connected;
}

void ReplayProducer::run(const AVCaptureFrameSink& sink)
{
    const double rate = m_options.framesPerSecond;
    const bool paced = std::isfinite(rate) && rate > 0;
    const microseconds period(paced ? static_cast<std::int64_t>(std::max(1.0, std::min(1e6 / rate, 1e12))) : 0);
    const Clock::time_point start = Clock::now();
    Pass pass;
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            if (paced)
                m_changed.wait_until(lock, start + pass.now, [this] { return m_stopping; });
            m_changed.wait(lock, [this] { return m_stopping || (m_connected && !m_stalled); });
            if (m_stopping)
                return;
            if (std::exchange(m_sourceChanged, false)) {
                pass.source = m_source.data();
                pass.framer
                    = std::make_unique<ReplayFramer>(m_options, pass.source ? pass.source->frameCacheBytes() : 0);
                pass.ended = false;
                pass.last = {};
                pass.reader = nullptr;
            }
        }
        if (!paced)
            pass.now = std::chrono::duration_cast<microseconds>(Clock::now() - start);
        if (const QImage picture = nextPicture(pass); !picture.isNull()) {
            if (auto frame = pass.framer->frame(picture)) {
                ++m_delivered;
                sink(CMSampleBuffer(std::move(*frame), pass.now));
            }
        }
        if (paced) {
            // The grid's next moment, or the latest one gone by: no drift, and no catching up either.
            const auto elapsed = std::chrono::duration_cast<microseconds>(Clock::now() - start);
            pass.now += period * std::max<std::int64_t>(1, (elapsed - pass.now) / period);
        }
    }
}

QImage ReplayProducer::nextPicture(Pass& pass) const
{
    if (pass.ended)
        return pass.last;
    // At the end of a pass another one begins, if it is to; a pass without any picture is the end of everything.
    for (;;) {
        const bool fresh = !pass.reader;
        if (fresh)
            pass.rewind();
        QImage picture = pass.reader ? pass.reader->next(pass.index, pass.now - pass.begin) : QImage();
        if (!picture.isNull()) {
            ++pass.index;
            pass.last = picture;
            return picture;
        }
        if (!m_options.loops || fresh || !pass.reader)
            break;
        pass.reader = nullptr;
    }
    pass.ended = true;
    if (m_ended)
        m_ended();
    return pass.last;
}

} // namespace kelvara
