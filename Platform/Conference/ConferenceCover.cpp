#include "Platform/Conference/ConferenceCover.h"

#include <QAccessible>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelvara {

namespace {

constexpr int kMargin = 32;
constexpr int kSignSize = 56;
constexpr int kSentenceSize = 17; ///< Points.
constexpr int kActionHeight = 50;
constexpr int kTurnMilliseconds = 33;
constexpr int kTurnDegrees = 9;
constexpr QColor kAccent { 27, 170, 194 };
constexpr QColor kWarning { 0xf0, 0xb4, 0x4c };

// White on it has a contrast of 5 : 1, on the accent itself not even 3.
const QString kActionStyle = QStringLiteral(
    "QPushButton { background: #0d7688; color: white; border: 2px solid transparent; border-radius: 10px;"
    " padding: 0 24px; font-size: 17px; font-weight: 600; }"
    "QPushButton:hover { background: #0b6777; } QPushButton:pressed { background: #095966; }"
    "QPushButton:focus { border-color: #bfe9f1; }");

} // namespace

ConferenceCover::ConferenceCover(QWidget* parent)
    : QWidget(parent), m_sign(new QWidget(this)), m_sentence(new QLabel(this)), m_action(new QPushButton(this))
{
    setAttribute(Qt::WA_NoMousePropagation);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_sign->setFixedSize(kSignSize, kSignSize);
    m_sign->setAttribute(Qt::WA_TransparentForMouseEvents);
    QFont font = m_sentence->font();
    font.setPixelSize(kSentenceSize);
    m_sentence->setFont(font);
    m_sentence->setWordWrap(true);
    m_sentence->setAlignment(Qt::AlignCenter);
    m_sentence->setStyleSheet(QStringLiteral("color: white;"));
    m_action->setStyleSheet(kActionStyle);
    m_action->setMinimumHeight(kActionHeight);
    m_action->setAutoDefault(true);
    connect(m_action, &QPushButton::clicked, this, &ConferenceCover::dismissed);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, 30); // the button lies where the view's own ones do
    layout->addStretch();
    layout->addWidget(m_sign, 0, Qt::AlignHCenter);
    layout->addSpacing(20);
    layout->addWidget(m_sentence);
    layout->addStretch();
    layout->addWidget(m_action);

    m_turning.setInterval(kTurnMilliseconds);
    connect(&m_turning, &QTimer::timeout, this, [this] {
        m_turn = (m_turn + kTurnDegrees) % 360;
        update(m_sign->geometry());
    });
}

void ConferenceCover::showConnecting()
{
    if (m_isConnecting && !isHidden())
        return; // said already
    m_isConnecting = true;
    m_turning.start();
    tell(QString::fromUtf8("Müşteri temsilcisine bağlanılıyor…"), QString::fromUtf8("Vazgeç"));
}

void ConferenceCover::showMessage(const QString& sentence)
{
    m_isConnecting = false;
    m_turning.stop();
    tell(sentence, QStringLiteral("Tamam"));
    m_action->setFocus();
}

void ConferenceCover::tell(const QString& sentence, const QString& action)
{
    m_sentence->setText(sentence);
    m_action->setText(action);
    setAccessibleName(sentence);
    show();
    raise();
    update();
    QAccessibleEvent announcement(m_sentence, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void ConferenceCover::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (isHidden()) // not just its window
        m_turning.stop();
}

QRectF ConferenceCover::signRect() const
{
    return QRectF(m_sign->geometry()).adjusted(4, 4, -4, -4);
}

void ConferenceCover::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QLinearGradient night(0, 0, 0, height());
    night.setColorAt(0, QColor(0x14, 0x2a, 0x36));
    night.setColorAt(1, QColor(0x09, 0x12, 0x19));
    painter.fillRect(rect(), night);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSign(painter);
}

void ConferenceCover::paintSign(QPainter& painter) const
{
    const QRectF place = signRect();
    if (m_isConnecting) {
        painter.setPen(QPen(QColor(255, 255, 255, 40), 5));
        painter.drawEllipse(place);
        painter.setPen(QPen(kAccent, 5, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(place, -m_turn * 16, 90 * 16);
        return;
    }
    painter.setPen(QPen(kWarning, 4));
    painter.drawEllipse(place);
    painter.setPen(QPen(kWarning, 5, Qt::SolidLine, Qt::RoundCap));
    const QPointF centre = place.center();
    painter.drawLine(centre - QPointF(0, 12), centre + QPointF(0, 3));
    painter.drawPoint(centre + QPointF(0, 12));
}

} // namespace kelvara
