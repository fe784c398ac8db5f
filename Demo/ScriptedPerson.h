#pragma once

#include "Demo/DemoHost.h"
#include "Demo/ScreenReader.h"
#include "Demo/Stage.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

namespace kelvara::demo {

/// Does what a person does before the view, seeing only what a person sees: holds the card before the camera, presses
/// the shutter once it has been ready for a moment, turns the card when asked, holds the face before the camera.
/// Without hands it leaves the shutter to somebody else and does the rest. Main thread.
class ScriptedPerson final : public QObject
{
    Q_OBJECT
public:
    ScriptedPerson(DemoHost& host, Stage& stage, bool pressesShutter, QObject* parent = nullptr);

    /// What has to be photographed now; absent when all is done.
    [[nodiscard]] std::optional<Subject> awaited() const;
    /// How long it has been awaited without being ready; 0 while it is.
    [[nodiscard]] qint64 unreadyMilliseconds() const;

Q_SIGNALS:
    /// A screen worth a picture stands: "front-waiting", "front-ready", "flip-hint" and so on.
    void screenReached(const QString& name);
    /// The view says that the flow is complete.
    void finished();

public Q_SLOTS:
    /// Presses the view's close button.
    void leave();

private:
    void look();
    void beginScene(qsizetype scene);
    void waitForReadiness();
    void press(const QAbstractButton* button);
    void reach(const QString& name);

    DemoHost& m_host;
    Stage& m_stage;
    ScreenReader m_screen;
    const bool m_pressesShutter;
    QTimer m_timer;
    qsizetype m_scene = 0;
    bool m_presented = false;
    QElapsedTimer m_sceneClock;
    QElapsedTimer m_readyClock; ///< Valid while the shutter may be pressed.
    QStringList m_reached;
};

} // namespace kelvara::demo
