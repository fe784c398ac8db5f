#include "Platform/Foundation/CameraArbiter.h"

#include <QGuiApplication>

#include <utility>

namespace kelvara {

CameraClaim::~CameraClaim()
{
    CameraArbiter::shared().release();
}

CameraArbiter& CameraArbiter::shared()
{
    // Never destroyed: sessions that live in static objects of a host may ask for it after the last of `main`.
    static auto* const arbiter = new CameraArbiter;
    return *arbiter;
}

CameraArbiter::CameraArbiter()
{
    if (!qGuiApp)
        return;
    applicationStateChanged(QGuiApplication::applicationState());
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &CameraArbiter::applicationStateChanged);
}

std::unique_ptr<CameraClaim> CameraArbiter::claim()
{
    const bool wasInterrupted = isInterrupted();
    ++m_claims;
    m_waitsForForeground = false;
    std::unique_ptr<CameraClaim> claim(new CameraClaim);
    if (!wasInterrupted)
        Q_EMIT interruptedChanged(true);
    return claim;
}

void CameraArbiter::release()
{
    if (--m_claims > 0)
        return;
    m_waitsForForeground = m_isInBackground;
    if (!m_waitsForForeground)
        Q_EMIT interruptedChanged(false);
}

void CameraArbiter::applicationStateChanged(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationInactive) // another window has the focus, ours is still seen
        return;
    m_isInBackground = state == Qt::ApplicationHidden || state == Qt::ApplicationSuspended;
    if (m_isInBackground || !std::exchange(m_waitsForForeground, false))
        return;
    Q_EMIT interruptedChanged(false);
}

} // namespace kelvara
