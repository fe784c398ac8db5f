#pragma once

#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Tools/Replay/FlowLog.h"

#include <QPointer>
#include <QWidget>

namespace kelvara::replay {

/// Logs what a person sees of the view: its screens, and what the reader's sheet is about. It looks before every event
/// of the main thread, so that nothing that is shown for a moment only is missed. Main thread.
class ScreenWatch final : public QObject
{
public:
    /// `view` is borrowed; the watch ends by itself when it goes.
    ScreenWatch(QWidget& view, FlowLog& log);

    /// The screen that was shown last; empty before the first.
    [[nodiscard]] const QString& screen() const { return m_screen; }
    /// Nothing is logged any more.
    void end();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look();
    void shown(QWidget& control);
    void sheetGone();

    QPointer<QWidget> m_view;
    FlowLog& m_log;
    QString m_screen;
    QPointer<chip::ReaderSheet> m_sheet;
    bool m_hasSheet = false;
    chip::sheet::SheetPhase m_phase = chip::sheet::SheetPhase::Present;
};

} // namespace kelvara::replay
