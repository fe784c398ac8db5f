#pragma once

#include "Platform/Chip/sheet/SheetPhase.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace kelvara::chip::sheet {

/// The moving picture of a phase: a card that is held to a phone, waves between them, a mark at the end. Drawn anew at
/// every size. Stands still where the system asks for that, and costs nothing while it is not to be seen. Main thread.
class SheetIllustration final : public QWidget
{
    Q_OBJECT

public:
    explicit SheetIllustration(QWidget* parent = nullptr);

    [[nodiscard]] SheetPhase phase() const { return m_phase; }
    /// Begins the phase's movement, unless it is shown already.
    void setPhase(SheetPhase phase);
    /// Initially so.
    void setMoves(bool moves);

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void runOrRest();

    SheetPhase m_phase = SheetPhase::Present;
    bool m_moves = true;
    QBasicTimer m_timer;
    QElapsedTimer m_clock; ///< Since the phase began.
};

} // namespace kelvara::chip::sheet
