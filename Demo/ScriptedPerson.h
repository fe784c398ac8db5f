#pragma once

#include "Demo/ChipHand.h"
#include "Demo/DemoHost.h"
#include "Demo/ScreenReader.h"
#include "Demo/Stage.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

namespace kelvara::demo {

/// Does what a person does before the view, seeing only what a person sees: holds the card before the camera, presses
/// the shutter once it has been ready for a moment, turns the card when asked, holds the face before the camera, and
/// the card to the reader. Without fingers it leaves the buttons to somebody else and does the rest. Main thread.
class ScriptedPerson final : public QObject
{
    Q_OBJECT
public:
    ScriptedPerson(DemoHost& host, Stage& stage, bool pressesButtons, QObject* parent = nullptr);

    /// What has to be photographed now; absent when all is photographed.
    [[nodiscard]] std::optional<Subject> awaited() const;
    /// How long it has been awaited without being ready; 0 while it is.
    [[nodiscard]] qint64 unreadyMilliseconds() const;
    /// Whether the view waits for this person: to see what is new on it, to bring the card or the face, to press.
    [[nodiscard]] bool isActing() const;
    /// What is in the way of reading the chip; empty before that step and after success.
    [[nodiscard]] QString chipTrouble() const { return m_chipHand.trouble(); }

Q_SIGNALS:
    /// A screen worth a picture stands: "front-waiting", "front-ready", "flip-hint" and so on.
    void screenReached(const QString& name);
    /// The view says that the flow is complete.
    void finished();
    /// The chip could not be read, and nobody else is there to try again.
    void gaveUp();

public Q_SLOTS:
    /// Presses the view's close button.
    void leave();

private:
    void look();
    void beginScene(qsizetype scene);
    void lookAfterPhotographs();
    void waitForReadiness();
    void press(const QAbstractButton* button);
    void reach(const QString& name);

    DemoHost& m_host;
    Stage& m_stage;
    ScreenReader m_screen;
    ChipHand m_chipHand;
    const bool m_pressesButtons;
    QTimer m_timer;
    qsizetype m_scene = 0;
    bool m_presented = false;
    QElapsedTimer m_sceneClock;
    QElapsedTimer m_readyClock; ///< Valid while the shutter may be pressed.
    QStringList m_reached;
};

} // namespace kelvara::demo
