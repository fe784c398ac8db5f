#pragma once

#include "Kelvara/ControlButton.h"
#include "Platform/Foundation/Export.h"

#include <optional>

namespace kelvara {

/// A button of two states that shows another background image in each. Off at first, showing neither image.
///
/// The state flips at the end of every touch, before `clicked()`: also of one released outside the button (then without
/// `clicked()`), and of every press by keyboard or assistive technology. A touch that is taken away does not count.
/// Small ones can be pressed within 44 × 44 points. Main thread.
class KELVARA_EXPORT ToggleButton : public ControlButton
{
    Q_OBJECT

public:
    explicit ToggleButton(QWidget* parent = nullptr);
    explicit ToggleButton(const QRect& frame, QWidget* parent = nullptr);

    // Every assignment, of the same value too, updates what is shown.
    [[nodiscard]] bool isOn() const { return m_isOn; }
    void setIsOn(bool on);
    [[nodiscard]] const std::optional<ControlImage>& onImage() const { return m_onImage; }
    void setOnImage(const std::optional<ControlImage>& image);
    [[nodiscard]] const std::optional<ControlImage>& offImage() const { return m_offImage; }
    void setOffImage(const std::optional<ControlImage>& image);

    /// Makes the state's image the background image; without one the background stays what it is.
    void updateDisplay();

protected:
    void nextCheckState() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    bool m_isOn = false;
    std::optional<ControlImage> m_onImage;
    std::optional<ControlImage> m_offImage;
    bool m_isTracking = false;
};

} // namespace kelvara
