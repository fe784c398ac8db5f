#include "Kelvara/IconButton.h"

namespace kelvara {

IconButton::IconButton(QWidget* parent) : ControlButton(parent)
{
    setMinimumTouchSize({ 44, 44 });
}

} // namespace kelvara
