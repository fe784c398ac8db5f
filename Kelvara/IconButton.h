#pragma once

#include "Kelvara/ControlButton.h"

namespace kelvara {

/// A button that is just its background image, such as the close button. Small ones can be pressed within 44 × 44
/// points. Main thread.
class IconButton : public ControlButton
{
    Q_OBJECT

public:
    explicit IconButton(QWidget* parent = nullptr);
};

} // namespace kelvara
