#include "Kelvara/ActionButton.h"

#include <QFont>

namespace kelvara {

namespace {

constexpr double kCornerRadius = 8.0;

} // namespace

ActionButton::ActionButton(QWidget* parent) : ControlButton(parent)
{
    QFont title = font();
    title.setPixelSize(kTitleSize);
    title.setWeight(QFont::DemiBold);
    setFont(title);
    setCornerRadius(kCornerRadius);
    setClipsToBounds(true);
}

} // namespace kelvara
