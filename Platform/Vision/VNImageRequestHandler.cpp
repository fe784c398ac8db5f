#include "Platform/Vision/VNImageRequestHandler.h"

#include "Platform/Foundation/SerialQueue.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionImage.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace kelvara {

namespace {

/// The one helping thread of all analyses in the process. It only ever helps: whoever performs does by itself what
/// the helper has not begun, so two views at a time do not wait for each other.
SerialQueue& helper()
{
    static SerialQueue queue(QStringLiteral("visionHelper"), QualityOfService::UserInitiated);
    return queue;
}

/// The requests of one `perform`, handed out to the performing thread and the helper. It borrows everything: once
/// `finish` has returned, a helper that comes late finds nothing to begin and touches nothing else, so neither frame
/// nor requests live on in its queue.
class Batch
{
public:
    Batch(std::span<const std::shared_ptr<VNRequest>> requests, const VisionImage& image,
        const VisionDetectors& detectors)
        : m_requests(requests), m_image(image), m_detectors(detectors), m_errors(requests.size())
    { }

    /// Searches until no request is left to begin.
    void work()
    {
        std::unique_lock lock(m_mutex);
        while (m_begun < m_requests.size()) {
            const std::size_t index = m_begun++;
            lock.unlock();
            m_errors[index] = m_requests[index]->detect(m_image, m_detectors);
            lock.lock();
            ++m_ended;
        }
        m_progress.notify_all();
    }

    const std::vector<std::optional<VNError>>& finish()
    {
        std::unique_lock lock(m_mutex);
        m_progress.wait(lock, [this] { return m_ended == m_requests.size(); });
        return m_errors;
    }

private:
    const std::span<const std::shared_ptr<VNRequest>> m_requests;
    const VisionImage& m_image;
    const VisionDetectors& m_detectors;
    std::vector<std::optional<VNError>> m_errors;
    std::mutex m_mutex;
    std::condition_variable m_progress;
    std::size_t m_begun = 0;
    std::size_t m_ended = 0;
};

} // namespace

struct VNImageRequestHandler::State
{
    std::optional<VisionImage> image;
    std::shared_ptr<const VisionDetectors> detectors;
};

VNImageRequestHandler::VNImageRequestHandler(QImage image, CGImagePropertyOrientation orientation,
    [[maybe_unused]] const QVariantMap& options, std::shared_ptr<const VisionDetectors> detectors)
    : d(std::make_unique<State>())
{
    d->image.emplace(UIImage(std::move(image), 1.0, imageOrientation(orientation)).toQImage());
    d->detectors = detectors ? std::move(detectors) : std::make_shared<const VisionDetectors>();
}

VNImageRequestHandler::~VNImageRequestHandler() = default;

std::optional<VNError> VNImageRequestHandler::perform(std::span<const std::shared_ptr<VNRequest>> requests)
{
    if (d->image->size().isEmpty())
        return VNError { VNError::Kind::InvalidImage, QStringLiteral("The image has no pixels.") };

    const auto batch = std::make_shared<Batch>(requests, *d->image, *d->detectors);
    if (requests.size() > 1 && std::thread::hardware_concurrency() > 1)
        helper().async([batch] { batch->work(); });
    batch->work();
    const std::vector<std::optional<VNError>>& errors = batch->finish();
    for (std::size_t index = 0; index < requests.size(); ++index)
        requests[index]->complete(errors[index]);
    return std::nullopt;
}

} // namespace kelvara
