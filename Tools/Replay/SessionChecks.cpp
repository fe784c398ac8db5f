// What must hold at the end of every session, whatever its script did.

#include "Platform/Foundation/CameraArbiter.h"
#include "Tools/Replay/EventLoop.h"
#include "Tools/Replay/ReplaySession.h"

#include <QApplication>

namespace kelvara::replay {

namespace {

using namespace std::chrono_literals;

/// A camera's thread may have a picture in its hands when it is told to stop.
constexpr auto kStill = 60ms;
constexpr auto kFirstFrame = 10s;
/// A call's cameras are handed back after a moment.
constexpr auto kHandover = 3s;
constexpr auto kLastWords = 30ms;

} // namespace

int ReplaySession::callViews() const
{
    int count = 0;
    for (const QWidget* child : m_view->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        count += child->inherits("kelvara::JitsiMeetView") ? 1 : 0;
    return count;
}

void ReplaySession::finish()
{
    m_destroyIn.clear();
    settle();
    if (m_view) {
        checkCameras();
        checkConferences(true);
        m_watch->end();
        m_window.reset();
        m_recorder.viewGone();
    }
    m_window.reset();
    checkAftermath();
    m_problems += m_recorder.problems();
}

void ReplaySession::checkCameras()
{
    const auto [back, front] = m_device->deliveredFrames();
    if (!m_view->isScanning()) {
        spinFor(kStill);
        if (!m_view->isScanning() && m_device->deliveredFrames() != std::pair(back, front))
            m_problems.append(QStringLiteral("A camera delivers, though isScanning is false."));
        return;
    }
    if (CameraArbiter::shared().isInterrupted())
        m_problems.append(QStringLiteral("isScanning is true while a call has the cameras."));
    const bool delivers = spinUntil(
        [&, before = std::pair(back, front)] { return !m_view->isScanning() || m_device->deliveredFrames() != before; },
        kFirstFrame);
    if (!delivers)
        m_problems.append(QStringLiteral("isScanning is true, yet no camera delivers."));
    const auto now = m_device->deliveredFrames();
    if (now.first != back && now.second != front)
        m_problems.append(QStringLiteral("Both cameras deliver at a time."));
}

void ReplaySession::checkConferences(bool isExact)
{
    const int terminated = m_log.count(QStringLiteral("call:terminated"));
    const int open = m_device->conference()->page() ? 1 : 0;
    if (terminated > m_joined || (isExact && terminated + open != m_joined))
        m_problems.append(QStringLiteral("Of %1 conferences that were joined %2 ended and %3 go on.")
                              .arg(m_joined)
                              .arg(terminated)
                              .arg(open));
}

void ReplaySession::checkAftermath()
{
    const auto before = m_device->deliveredFrames();
    spinFor(kLastWords);
    if (m_device->deliveredFrames() != before)
        m_problems.append(QStringLiteral("A camera delivers after the view's end."));
    if (const int pages = m_device->conference()->alive(); pages > 0)
        m_problems.append(QStringLiteral("%1 conferences outlive the view.").arg(pages));
    if (m_isInBackground)
        setBackground(false);
    // The cameras are the process's: the next session must find them free.
    if (!spinUntil([] { return !CameraArbiter::shared().isInterrupted(); }, kHandover))
        m_problems.append(QStringLiteral("The cameras stay taken after the last call."));
}

} // namespace kelvara::replay
