#pragma once

#include "Kelvara/ControlButton.h"
#include "Platform/Foundation/Export.h"

#include <optional>

namespace kelvara {

/// The round shutter button. It spins in half turns of a second each, clockwise; the angle is kept from one to the
/// next, so what it shows should look the same upside down.
///
/// Made in code, it is neither round nor ready to spin until it was shaped, after it has its size. Deleting it while it
/// spins is safe. Main thread.
class KELVARA_EXPORT CircleButton : public ControlButton
{
    Q_OBJECT

public:
    explicit CircleButton(QWidget* parent = nullptr);
    explicit CircleButton(const QRect& frame, QWidget* parent = nullptr);

    /// Looked at whenever a half turn ends. Mind the name: true spins on, false drops the image and stops. Absent at
    /// first; a half turn that ends without a value is a fatal error.
    std::optional<bool> stopRotate;

    /// To be called once a layout has been loaded.
    void awakeFromNib();
    /// Clear background, clipped to a circle of the present width; `stopRotate` becomes false.
    void shapeButton();

    /// Begins a half turn. While one is under way it begins a second chain of them, which adds to the first.
    void rotateButton();
    void rotate() { rotateButton(); }

    /// The angle that the turns so far add up to, in radians, without the part of one under way.
    [[nodiscard]] double rotation() const { return m_rotation; }

protected:
    [[nodiscard]] double paintedRotation() const override;
    /// Being disabled has a picture of its own here, and the one of being busy must not fade.
    [[nodiscard]] double disabledImageOpacity() const override { return 1; }

private:
    void finishHalfTurn();

    double m_rotation = 0;
};

} // namespace kelvara
