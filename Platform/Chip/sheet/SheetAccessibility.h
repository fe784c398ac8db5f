#pragma once

namespace kelvara::chip::sheet {

/// Makes the sheet known to assistive technology as a dialog, its lines as text and its picture as decoration. Any
/// number of times. Main thread.
void installAccessibility();

} // namespace kelvara::chip::sheet
