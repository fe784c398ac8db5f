#pragma once

#include "Kelvara/ControlButton.h"
#include "Platform/Foundation/Export.h"

namespace kelvara {

/// A button for hosts' own layouts that rounds its corners by 15 points once it was loaded from one. Made in code and
/// not awoken, it stays square. Main thread.
class KELVARA_EXPORT RoundedButton : public ControlButton
{
    Q_OBJECT

public:
    explicit RoundedButton(QWidget* parent = nullptr);
    explicit RoundedButton(const QRect& frame, QWidget* parent = nullptr);

    /// To be called once a layout has been loaded.
    void awakeFromNib();

private:
    void shapeButton();
};

} // namespace kelvara
