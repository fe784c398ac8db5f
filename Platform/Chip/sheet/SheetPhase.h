#pragma once

namespace kelvara::chip::sheet {

/// What the sheet is about.
enum class SheetPhase {
    Present, ///< A card is waited for.
    Reading,
    PresentAgain, ///< The card was lost.
    Done,
    Failed,
};

} // namespace kelvara::chip::sheet
