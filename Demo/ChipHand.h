#pragma once

#include "Demo/ScreenReader.h"
#include "Demo/Stage.h"

#include <QElapsedTimer>
#include <QObject>

#include <optional>

namespace kelvara::demo {

/// What a person does at the step that reads the card's chip, seeing only what a person sees: has the read begin, holds
/// the card to the reader when the sheet asks for it, again when it was lost, and takes it away at the end. Without
/// fingers it leaves the button to somebody else. Main thread.
class ChipHand final : public QObject
{
    Q_OBJECT
public:
    ChipHand(const ScreenReader& screen, Stage& stage, bool pressesButton, QObject* parent = nullptr);

    /// Looks and acts. False when neither the step nor the reader's sheet is on the screen.
    bool look();

    /// Whether the view waits for this hand: to begin the read, or to hold the card to the reader.
    [[nodiscard]] bool isAwaited() const;

    /// What the screen has to say about a read that has not succeeded: the last failure or what is asked for. Empty
    /// before the step and after success.
    [[nodiscard]] QString trouble() const;

Q_SIGNALS:
    /// A screen worth a picture stands: "chip-waiting", "chip-present", "chip-reading", "chip-lost", "chip-read".
    void screenReached(const QString& name);
    /// The button is to be pressed.
    void pressed(const QAbstractButton* button);
    /// The sheet says that the read has failed.
    void failed();

private:
    void enter(std::optional<SheetPhase> phase);
    void lookAtStep();
    void lookAtSheet();
    void lookAtProgress(int percent);
    void holdAfter(int milliseconds);

    const ScreenReader& m_screen;
    Stage& m_stage;
    const bool m_pressesButton;
    QElapsedTimer m_stepClock; ///< Since the step was seen first.
    QElapsedTimer m_phaseClock; ///< Since the sheet came to its phase.
    std::optional<SheetPhase> m_phase; ///< Absent without a sheet.
    bool m_hasPressed = false;
    bool m_hasHeld = false; ///< In this phase.
    QString m_failure;
};

} // namespace kelvara::demo
