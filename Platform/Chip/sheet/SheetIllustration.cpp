#include "Platform/Chip/sheet/SheetIllustration.h"

#include "Platform/Chip/sheet/SheetDrawing.h"
#include "Platform/Chip/sheet/SheetStyle.h"

#include <QPainter>
#include <QTimerEvent>

namespace kelvara::chip::sheet {

namespace {

constexpr int kDrawingMilliseconds = 33;

bool hasEnd(SheetPhase phase)
{
    return phase == SheetPhase::Done || phase == SheetPhase::Failed;
}

} // namespace

SheetIllustration::SheetIllustration(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    // Its frames are drawn without what lies beneath the sheet, such as a camera's preview.
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_clock.start();
}

void SheetIllustration::setPhase(SheetPhase phase)
{
    if (phase == m_phase)
        return;
    m_phase = phase;
    m_clock.restart();
    runOrRest();
    update();
}

void SheetIllustration::setMoves(bool moves)
{
    m_moves = moves;
    runOrRest();
    update();
}

void SheetIllustration::runOrRest()
{
    const bool isAtEnd = hasEnd(m_phase) && m_clock.elapsed() > kMarkDrawnAfter;
    if (!m_moves || !isVisible() || isAtEnd)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(kDrawingMilliseconds, this);
}

void SheetIllustration::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kSurface);
    const double scale = std::min(width() / kCanvas.width(), height() / kCanvas.height());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    painter.scale(scale, scale);
    painter.translate(-kCanvas.width() / 2, -kCanvas.height() / 2);
    drawScene(painter, m_phase, m_moves ? m_clock.elapsed() : restingMoment(m_phase));
}

void SheetIllustration::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    update();
    runOrRest();
}

void SheetIllustration::showEvent(QShowEvent*)
{
    runOrRest();
}

void SheetIllustration::hideEvent(QHideEvent*)
{
    runOrRest();
}

} // namespace kelvara::chip::sheet
