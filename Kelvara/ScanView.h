#pragma once

#include "Platform/Foundation/Export.h"

#include <QWidget>

namespace kelvara {

/// A framed box that a host may lay over a picture. Paints nothing until it is shaped. Main thread.
class KELVARA_EXPORT ScanView : public QWidget
{
    Q_OBJECT

public:
    explicit ScanView(QWidget* parent = nullptr);
    explicit ScanView(const QRect& frame, QWidget* parent = nullptr);

    /// Clear background and a white border of 3 points inside the bounds, its outer corners rounded by 5.
    void shape();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_shaped = false;
};

} // namespace kelvara
