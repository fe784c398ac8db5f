#pragma once

#include "Platform/Chip/sheet/SheetPhase.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <optional>

class QAbstractButton;
class QProgressBar;

namespace kelvara::chip {
class ReaderSheet;
}

namespace kelvara::demo {

using SheetPhase = chip::sheet::SheetPhase;

/// What a person sees of the view, found from outside by texts and accessible names only. Main thread.
class ScreenReader
{
public:
    explicit ScreenReader(QWidget& view);

    /// The shutter, when it is on the screen.
    [[nodiscard]] QAbstractButton* shutter() const;
    /// Whether the shutter is there to be pressed.
    [[nodiscard]] bool isReady() const;
    /// The button that leaves the view, when it is on the screen.
    [[nodiscard]] QAbstractButton* closeButton() const;
    /// The button that begins reading the chip, when it is on the screen.
    [[nodiscard]] QAbstractButton* readButton() const;
    /// Whether the picture that asks to turn the card over is on the screen.
    [[nodiscard]] bool asksToTurn() const;
    [[nodiscard]] bool shows(const QString& text) const;

    /// What the reader's sheet is about; absent when it is not on the screen.
    [[nodiscard]] std::optional<SheetPhase> sheetPhase() const;
    /// Its message as it is read out; empty without a sheet.
    [[nodiscard]] QString sheetMessage() const;
    /// Its bar, from 0 to 100; null without a sheet.
    [[nodiscard]] const QProgressBar* sheetProgress() const;

private:
    [[nodiscard]] QAbstractButton* button(const QString& accessibleName) const;
    /// The newest, should an earlier one be on its way out.
    [[nodiscard]] chip::ReaderSheet* sheet() const;

    QPointer<QWidget> m_view;
};

} // namespace kelvara::demo
