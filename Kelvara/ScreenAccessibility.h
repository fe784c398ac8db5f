#pragma once

namespace kelvara {

/// Makes the view and what lies on it besides buttons and labels known to assistive technology by what they are: the
/// view and a call as groups, the cut-outs and the picture of turning as pictures, announcements as a notification. Any
/// number of times. Main thread.
void installScreenAccessibility();

} // namespace kelvara
