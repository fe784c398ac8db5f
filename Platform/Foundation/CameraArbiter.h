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

/// What a phone's system does with the cameras: when a call wants the one that an application is taking pictures with,
/// the capture sessions of the process are interrupted, as a camera usually serves one client; and while the
/// application is in the background (hidden or suspended) none of them runs. Afterwards they go on.
///
/// One a process, as there is one set of cameras. Main thread only.
class CameraArbiter final : public QObject
{
    Q_OBJECT
public:
    [[nodiscard]] static CameraArbiter& shared();

    /// Takes the cameras away from all capture sessions; they have stopped when this returns.
    [[nodiscard]] std::unique_ptr<CameraClaim> claim();

    /// Whether capture sessions must not run.
    [[nodiscard]] bool isInterrupted() const { return m_claims > 0 || m_isInBackground; }

Q_SIGNALS:
    void interruptedChanged(bool interrupted);

private:
    friend class CameraClaim;
    CameraArbiter();
    void release();
    void applicationStateChanged(Qt::ApplicationState state);
    void tell();

    int m_claims = 0;
    bool m_isInBackground = false;
    bool m_told = false; ///< What `interruptedChanged` last said.
};

} // namespace kelvara
