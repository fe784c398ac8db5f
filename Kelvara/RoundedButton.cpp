#include "Kelvara/RoundedButton.h"

namespace kelvara {

namespace {

constexpr double kCornerRadius = 15.0;

} // namespace

RoundedButton::RoundedButton(QWidget* parent) : ControlButton(parent) { }

RoundedButton::RoundedButton(const QRect& frame, QWidget* parent) : ControlButton(parent)
{
    setGeometry(frame);
}

void RoundedButton::awakeFromNib()
{
    shapeButton();
}

void RoundedButton::shapeButton()
{
    setClipsToBounds(true);
    setCornerRadius(kCornerRadius);
}

} // namespace kelvara
