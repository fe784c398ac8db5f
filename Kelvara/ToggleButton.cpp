#include "Kelvara/ToggleButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QMouseEvent>

#include <utility>

namespace kelvara {

namespace {

/// Tells assistive technology the state, and lets it press. (Qt's own checkable buttons also offer it to change the
/// state without a press, which would leave the torch as it is.)
class AccessibleToggle final : public QAccessibleWidget
{
public:
    explicit AccessibleToggle(ToggleButton* button) : QAccessibleWidget(button, QAccessible::CheckBox) { }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = button()->isOn();
        return state;
    }
    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (widget()->isEnabled())
            names.prepend(pressAction());
        return names;
    }
    void doAction(const QString& name) override
    {
        if (name == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    [[nodiscard]] ToggleButton* button() const { return static_cast<ToggleButton*>(widget()); }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* toggle = qobject_cast<ToggleButton*>(object);
    return toggle ? new AccessibleToggle(toggle) : nullptr;
}

} // namespace

ToggleButton::ToggleButton(QWidget* parent) : ControlButton(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setMinimumTouchSize({ 44, 44 });
}

ToggleButton::ToggleButton(const QRect& frame, QWidget* parent) : ToggleButton(parent)
{
    setGeometry(frame);
}

void ToggleButton::setIsOn(bool on)
{
    const bool changes = m_isOn != on;
    m_isOn = on;
    updateDisplay();
    if (changes) {
        QAccessible::State state;
        state.checked = true;
        QAccessibleStateChangeEvent event(this, state);
        QAccessible::updateAccessibility(&event);
    }
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
    if (event->button() == Qt::LeftButton && std::exchange(m_isTracking, false)) {
        const bool clicks = isDown() && hitButton(event->position().toPoint());
        const QPointer<ToggleButton> life(this); // who hears of the state may delete the button
        if (!clicks)
            setIsOn(!isOn());
        if (!life)
            return;
    }
    ControlButton::mouseReleaseEvent(event);
}

void ToggleButton::hideEvent(QHideEvent* event)
{
    m_isTracking = false;
    ControlButton::hideEvent(event);
}

} // namespace kelvara
