#include "Platform/Capture/CaptureHub.h"

#include "Platform/Capture/AVCaptureVideoDataOutput.h"
#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"
#include "Platform/Capture/FrameTurner.h"

#include <utility>

namespace kelvara {

std::uint64_t CaptureHub::open()
{
    const std::lock_guard lock(m_mutex);
    m_open = true;
    return ++m_runs;
}

void CaptureHub::close()
{
    const std::lock_guard lock(m_mutex);
    m_open = false;
}

void CaptureHub::setReceivers(
    std::vector<std::shared_ptr<AVCaptureVideoDataOutput>> outputs, std::vector<AVCaptureVideoPreviewLayer*> previews)
{
    // Swapped, so that what loses its last holder here goes without the mutex.
    const std::lock_guard lock(m_mutex);
    m_outputs.swap(outputs);
    m_previews.swap(previews);
}

void CaptureHub::deliver(std::uint64_t run, const CMSampleBuffer& frame)
{
    const std::lock_guard lock(m_mutex);
    if (!m_open || run != m_runs)
        return;
    FrameTurner turner(frame, m_pool);
    // Outputs first: what they have turned, the previews show.
    for (const auto& output : m_outputs)
        output->deliver(turner);
    for (AVCaptureVideoPreviewLayer* preview : m_previews)
        preview->deliver(turner);
}

} // namespace kelvara
