#include "Controls.h"

#include <Kelvara/ScanView.h>
#include <Kelvara/ToggleButton.h>

#include <QCoreApplication>
#include <QMouseEvent>

using namespace kelvara;

namespace {

void click(QWidget& control)
{
    const QPointF middle = QRectF(control.rect()).center();
    for (const auto& [type, held] :
        { std::pair(QEvent::MouseButtonPress, Qt::LeftButton), std::pair(QEvent::MouseButtonRelease, Qt::NoButton) }) {
        QMouseEvent event(type, middle, control.mapToGlobal(middle), Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&control, &event);
    }
}

QImage filled(Qt::GlobalColor colour)
{
    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

} // namespace

QString tryControls()
{
    QWidget window;
    window.setPalette(QPalette(Qt::black));
    window.resize(200, 100);
    ScanView frame(QRect(10, 10, 100, 80), &window);
    frame.shape();
    ToggleButton torch(QRect(150, 40, 24, 24), &window);
    torch.setOffImage(ControlImage(filled(Qt::blue)));
    torch.setOnImage(ControlImage(filled(Qt::green)));
    window.show();
    const auto seen = [&window](int x, int y) { return window.grab().toImage().pixelColor(x, y); };
    if (seen(11, 50) != QColor(Qt::white) || seen(60, 50) != QColor(Qt::black))
        return QStringLiteral("The frame is not one.");
    if (seen(162, 52) != QColor(Qt::blue))
        return QStringLiteral("The switch does not show that it is off.");
    int clicks = 0;
    QObject::connect(&torch, &ToggleButton::clicked, &window, [&clicks] { ++clicks; });
    click(torch);
    if (!torch.isOn() || clicks != 1)
        return QStringLiteral("The switch was pressed and is %1, after %2 clicks.")
            .arg(torch.isOn() ? QStringLiteral("on") : QStringLiteral("off"))
            .arg(clicks);
    if (seen(162, 52) != QColor(Qt::green))
        return QStringLiteral("The switch does not show that it is on.");
    return {};
}
