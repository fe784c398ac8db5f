#include "Kelvara/CircleButton.h"

#include "Platform/Foundation/FatalError.h"

#include <QVariantAnimation>

#include <cmath>
#include <numbers>

namespace kelvara {

namespace {

constexpr int kHalfTurnMilliseconds = 1000;

} // namespace

CircleButton::CircleButton(QWidget* parent) : ControlButton(parent) { }

CircleButton::CircleButton(const QRect& frame, QWidget* parent) : CircleButton(parent)
{
    setGeometry(frame);
}

void CircleButton::awakeFromNib()
{
    shapeButton();
}

void CircleButton::shapeButton()
{
    setBackgroundColor(Qt::transparent);
    stopRotate = false;
    setClipsToBounds(true);
    setCornerRadius(width() / 2.0);
}

void CircleButton::rotateButton()
{
    auto* halfTurn = new QVariantAnimation(this);
    halfTurn->setStartValue(0.0);
    halfTurn->setEndValue(std::numbers::pi);
    halfTurn->setDuration(kHalfTurnMilliseconds);
    connect(halfTurn, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(halfTurn, &QVariantAnimation::finished, this, [this, halfTurn] {
        // Its part of the angle goes over into the sum before anybody can paint.
        halfTurn->setParent(nullptr);
        halfTurn->deleteLater();
        finishHalfTurn();
    });
    halfTurn->start();
}

void CircleButton::finishHalfTurn()
{
    m_rotation += std::numbers::pi;
    update();
    if (!stopRotate)
        fatalError("CircleButton.stopRotate was read before shapeButton() or an assignment gave it a value.");
    if (*stopRotate)
        rotateButton();
    else
        setImage(std::nullopt);
}

double CircleButton::paintedRotation() const
{
    double angle = m_rotation;
    for (const auto* halfTurn : findChildren<QVariantAnimation*>(QString(), Qt::FindDirectChildrenOnly))
        angle += halfTurn->currentValue().toDouble();
    return std::fmod(angle, 2 * std::numbers::pi);
}

} // namespace kelvara
