#include "Kelvara/ToggleButton.h"

#include <QMouseEvent>

namespace kelvara {

ToggleButton::ToggleButton(QWidget* parent) : ControlButton(parent)
{
    setCheckable(true); // Tells assistive technology the state.
    setMinimumTouchSize({ 44, 44 });
}

ToggleButton::ToggleButton(const QRect& frame, QWidget* parent) : ToggleButton(parent)
{
    setGeometry(frame);
}

void ToggleButton::setIsOn(bool on)
{
    if (isChecked() == on)
        updateDisplay();
    else
        setChecked(on);
}

void ToggleButton::setOnImage(const std::optional<ControlImage>& image)
{
    m_onImage = image;
    updateDisplay();
}

void ToggleButton::setOffImage(const std::optional<ControlImage>& image)
{
    m_offImage = image;
    updateDisplay();
}

void ToggleButton::updateDisplay()
{
    if (const auto& image = isOn() ? m_onImage : m_offImage)
        setBackgroundImage(image);
}

void ToggleButton::checkStateSet()
{
    updateDisplay();
}

void ToggleButton::nextCheckState()
{
    // Every way of pressing that ends inside comes here, right before `clicked()`.
    setIsOn(!isOn());
}

void ToggleButton::mousePressEvent(QMouseEvent* event)
{
    m_isTracking = event->button() == Qt::LeftButton && hitButton(event->position().toPoint());
    ControlButton::mousePressEvent(event);
}

void ToggleButton::mouseReleaseEvent(QMouseEvent* event)
{
    const bool endsTouch = event->button() == Qt::LeftButton && m_isTracking;
    if (endsTouch) {
        m_isTracking = false;
        const bool clicks = isDown() && hitButton(event->position().toPoint());
        if (!clicks)
            setIsOn(!isOn());
    }
    ControlButton::mouseReleaseEvent(event);
}

void ToggleButton::hideEvent(QHideEvent* event)
{
    m_isTracking = false;
    ControlButton::hideEvent(event);
}

} // namespace kelvara
