#pragma once

#include <QObject>

#include <memory>

namespace kelvara {

/// A wish for the cameras that goes before everybody else's, held for as long as this lives. Main thread.
class CameraClaim final
{
public:
    ~CameraClaim();
    CameraClaim(const CameraClaim&) = delete;
    CameraClaim& operator=(const CameraClaim&) = delete;

private:
    friend class CameraArbiter;
    CameraClaim() = default;
};

/// What a phone's system does when a call wants the camera that an application is taking pictures with: a camera
/// usually serves one client, so the capture sessions of this process are interrupted, and go on when the call is over.
///
/// One a process, as there is one set of cameras. Main thread only.
class CameraArbiter final : public QObject
{
    Q_OBJECT
public:
    [[nodiscard]] static CameraArbiter& shared();

    /// Takes the cameras away from all capture sessions; they have stopped when this returns.
    [[nodiscard]] std::unique_ptr<CameraClaim> claim();

    /// Whether capture sessions must not run. Stays true after the last claim while the application is in the
    /// background (hidden or suspended): nobody's camera is to start there.
    [[nodiscard]] bool isInterrupted() const { return m_claims > 0 || m_waitsForForeground; }

Q_SIGNALS:
    void interruptedChanged(bool interrupted);

private:
    friend class CameraClaim;
    CameraArbiter();
    void release();
    void applicationStateChanged(Qt::ApplicationState state);

    int m_claims = 0;
    bool m_isInBackground = false;
    bool m_waitsForForeground = false;
};

} // namespace kelvara
