#include "Platform/Chip/sheet/ReaderSheet.h"

#include "Platform/Chip/sheet/SheetAccessibility.h"
#include "Platform/Chip/sheet/SheetButton.h"
#include "Platform/Chip/sheet/SheetFocus.h"
#include "Platform/Chip/sheet/SheetPanel.h"
#include "Platform/Chip/sheet/SheetStyle.h"
#include "Platform/Foundation/Announcement.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvara::chip {

using sheet::SheetPhase;

namespace {

constexpr int kSlideMilliseconds = 250;
constexpr double kDimming = 0.55;
constexpr int kAlwaysDimmed = 24; ///< Of the window's upper edge, so that the sheet is seen to be one.

SheetPhase phaseOf(const NFCViewDisplayMessage& message)
{
    switch (message.kind) {
    case NFCViewDisplayMessage::Kind::requestPresentCard:
        return message.isCardLost ? SheetPhase::PresentAgain : SheetPhase::Present;
    case NFCViewDisplayMessage::Kind::authenticating:
    case NFCViewDisplayMessage::Kind::readingDataGroup:
        break;
    case NFCViewDisplayMessage::Kind::error:
        return SheetPhase::Failed;
    case NFCViewDisplayMessage::Kind::successfulRead:
        return SheetPhase::Done;
    }
    return SheetPhase::Reading;
}

QString titleOf(SheetPhase phase)
{
    switch (phase) {
    case SheetPhase::Present:
        return QString::fromUtf8("Kartı okutun");
    case SheetPhase::Reading:
        return QString::fromUtf8("Kart okunuyor");
    case SheetPhase::PresentAgain:
        return QString::fromUtf8("Kartı yeniden yaklaştırın");
    case SheetPhase::Done:
        return QString::fromUtf8("Okuma tamamlandı");
    case SheetPhase::Failed:
        return QString::fromUtf8("Okuma başarısız");
    }
    return {};
}

} // namespace

ReaderSheet::ReaderSheet(QWidget* over)
    : QWidget(over ? over->window() : nullptr), m_window(parentWidget()), m_panel(new sheet::SheetPanel(this)),
      m_focus(std::make_unique<sheet::SheetFocus>(*this, *m_panel->button(), m_window))
{
    sheet::installAccessibility();
    hide();
    // Touches end here: neither the host's window nor what lies beneath gets them.
    setAttribute(Qt::WA_NoMousePropagation);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
    m_panel->show(m_phase, titleOf(m_phase), NFCViewDisplayMessage().text(), 0);
    connect(m_panel->button(), &QAbstractButton::clicked, this, &ReaderSheet::cancelOrClose);

    m_slide.setDuration(kSlideMilliseconds);
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_shown = value.toDouble();
        placePanel();
    });
    connect(&m_slide, &QVariantAnimation::finished, this, [this] {
        if (m_isLeaving)
            leave();
    });
    m_stay.setSingleShot(true);
    connect(&m_stay, &QTimer::timeout, this, [this] { slide(false); });
    if (m_window)
        m_window->installEventFilter(this);
    if (over && over != m_window) {
        connect(over, &QObject::destroyed, this, [this] {
            m_hasEnded = true;
            leave();
        });
    }
}

ReaderSheet::~ReaderSheet()
{
    // A host may take the sheet away itself.
    m_focus->release();
    if (m_isPresented)
        m_focus->giveBack();
}

void ReaderSheet::setTextScale(double scale)
{
    m_panel->setTextScale(scale > 1 ? std::min(scale, 3.0) : 1); // also what is no number
    arrange();
}

void ReaderSheet::present()
{
    if (std::exchange(m_isPresented, true) || !m_window)
        return;
    m_panel->setMoves(moves());
    setGeometry(m_window->rect());
    arrange();
    show();
    raise();
    m_focus->take();
    slide(true);
    announceMessage();
}

void ReaderSheet::display(const NFCViewDisplayMessage& message, const QString& text)
{
    if (m_hasEnded)
        return;
    const bool isEnd = message.kind == NFCViewDisplayMessage::Kind::successfulRead
        || message.kind == NFCViewDisplayMessage::Kind::error;
    if (message.failure && message.failure->kind == NFCPassportReaderError::Kind::UserCancelled) {
        dismiss();
        return;
    }
    m_phase = phaseOf(message);
    const int percent = m_phase == SheetPhase::Done ? 100 : message.progress;
    const bool isNews = m_panel->show(m_phase, titleOf(m_phase), text, percent);
    m_hasEnded = isEnd;
    const bool wasPresented = m_isPresented;
    const QPointer<ReaderSheet> life(this); // who hears of it may have the sheet deleted
    if (!wasPresented)
        present();
    if (!life)
        return;
    arrange();
    if (isEnd)
        m_stay.start(m_phase == SheetPhase::Done ? kSuccessStays : kErrorStays);
    announceProgress(percent); // first: the last words are what the read has come to
    if (life && wasPresented && isNews)
        announceMessage();
}

void ReaderSheet::dismiss()
{
    m_hasEnded = true;
    slide(false);
}

void ReaderSheet::cancelOrClose()
{
    const bool isCancelled = !std::exchange(m_hasEnded, true);
    slide(false);
    if (isCancelled)
        Q_EMIT cancelled(); // last: the sheet may be deleted by it
}

void ReaderSheet::slide(bool up)
{
    if (m_isLeaving)
        return;
    m_isLeaving = !up;
    if (!up)
        m_focus->release();
    m_stay.stop();
    m_slide.stop();
    if (!up && (!m_isPresented || !m_window)) {
        leave();
        return;
    }
    m_slide.setStartValue(m_shown);
    m_slide.setEndValue(up ? 1.0 : 0.0);
    if (moves()) {
        m_slide.start();
        return;
    }
    m_shown = up ? 1 : 0;
    placePanel();
    if (!up)
        leave();
}

void ReaderSheet::leave()
{
    m_isLeaving = true;
    m_focus->release();
    m_slide.stop();
    m_stay.stop();
    m_focus->giveBack();
    hide();
    deleteLater();
}

void ReaderSheet::arrange()
{
    if (!m_isPresented)
        return;
    const int most = std::max(1, height() - std::min(kAlwaysDimmed, height() / 10));
    m_panel->arrange(std::min(width(), sheet::kWidestPanel), most);
    placePanel();
}

void ReaderSheet::placePanel()
{
    const int visible = static_cast<int>(std::lround(m_panel->height() * m_shown));
    m_panel->move((width() - m_panel->width()) / 2, height() - visible);
    update();
}

void ReaderSheet::announceMessage()
{
    const QPointer<ReaderSheet> life(this);
    setAccessibleName(titleOf(m_phase));
    if (life)
        setAccessibleDescription(m_panel->spokenMessage());
    if (life)
        announce(*this, accessibleName() + QStringLiteral(". ") + accessibleDescription());
}

void ReaderSheet::announceProgress(int percent)
{
    // Not at every piece that was read: nobody could listen to a hundred numbers. An error says no number any more.
    constexpr int kFifth = 20;
    if (m_phase == SheetPhase::Failed || percent / kFifth <= m_fifthsSaid)
        return;
    m_fifthsSaid = percent / kFifth;
    m_panel->announceProgress();
}

bool ReaderSheet::moves() const
{
    return style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this) != 0;
}

bool ReaderSheet::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::KeyRelease:
        event->accept();
        return true;
    case QEvent::ShortcutOverride:
        // No shortcut of the host fires beneath the sheet.
        event->accept();
        return true;
    default:
        return QWidget::event(event);
    }
}

bool ReaderSheet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window) {
        if (event->type() == QEvent::Resize)
            setGeometry(m_window->rect());
        else if (event->type() == QEvent::ChildAdded && m_isPresented && !m_isLeaving)
            raise(); // what the host puts into its window meanwhile lies beneath
    }
    return QWidget::eventFilter(watched, event);
}

bool ReaderSheet::focusNextPrevChild(bool)
{
    // There is nowhere else to go.
    m_panel->button()->setFocus(Qt::TabFocusReason);
    return true;
}

void ReaderSheet::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Back:
        if (!event->isAutoRepeat())
            cancelOrClose();
        break;
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        m_panel->scrollMessage(-1);
        break;
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        m_panel->scrollMessage(1);
        break;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        focusNextPrevChild(true);
        break;
    default:
        break;
    }
    event->accept();
}

void ReaderSheet::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(4, 14, 20, static_cast<int>(std::lround(255 * kDimming * m_shown))));
}

void ReaderSheet::resizeEvent(QResizeEvent*)
{
    arrange();
}

void ReaderSheet::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_panel->setMoves(moves());
        arrange();
    }
}

} // namespace kelvara::chip
