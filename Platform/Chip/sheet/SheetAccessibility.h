#pragma once

class QWidget;

namespace kelvara::chip::sheet {

/// Makes the sheet known to assistive technology as a dialog and its lines as text. Any number of times. Main thread.
void installAccessibility();

/// Has the widget's accessible name and description read out now.
void announce(QWidget* widget);

} // namespace kelvara::chip::sheet
