#pragma once

#include "Kelvara/ControlButton.h"

namespace kelvara {

/// The wide button of the text screens: a white title (17 points, semibold) on a coloured background with corners
/// rounded by 8. Main thread.
class ActionButton : public ControlButton
{
    Q_OBJECT

public:
    explicit ActionButton(QWidget* parent = nullptr);

    static constexpr int kTitleSize = 17;
};

} // namespace kelvara
