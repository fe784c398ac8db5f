#include "Platform/Conference/ConferenceCover.h"

#include "Platform/Foundation/Announcement.h"

#include <QFontMetrics>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int kMargin = 32;
constexpr int kBelowAction = 30;
constexpr int kSignSize = 56;
constexpr int kUnderSign = 20;
constexpr int kLetters = 17; ///< Of sentence and button, points.
constexpr double kLettersStep = 0.95;
constexpr int kActionHeight = 50;
constexpr int kActionAir = 16; ///< Above and below the letters of the button together.
constexpr int kTurnMilliseconds = 33;
constexpr int kTurnDegrees = 9;
constexpr QColor kAccent { 27, 170, 194 };
constexpr QColor kWarning { 0xf0, 0xb4, 0x4c };

QString actionStyle(int letters)
{
    // White on it has a contrast of 5 : 1, on the accent itself not even 3.
    return QStringLiteral(
        "QPushButton { background: #0d7688; color: white; border: 2px solid transparent; border-radius: 10px;"
        " padding: 0 24px; font-size: %1px; font-weight: 600; }"
        "QPushButton:hover { background: #0b6777; } QPushButton:pressed { background: #095966; }"
        "QPushButton:focus { border-color: #bfe9f1; }")
        .arg(letters);
}

} // namespace

ConferenceCover::ConferenceCover(QWidget* parent)
    : QWidget(parent), m_sign(new QWidget(this)), m_sentence(new QLabel(this)), m_action(new QPushButton(this))
{
    setAttribute(Qt::WA_NoMousePropagation);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_sign->setFixedSize(kSignSize, kSignSize);
    m_sign->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_sentence->setWordWrap(true);
    m_sentence->setAlignment(Qt::AlignCenter);
    m_sentence->setStyleSheet(QStringLiteral("color: white;"));
    m_action->setAutoDefault(true);
    connect(m_action, &QPushButton::clicked, this, &ConferenceCover::dismissed);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kBelowAction); // the button lies where the view's own ones do
    layout->addStretch();
    layout->addWidget(m_sign, 0, Qt::AlignHCenter);
    layout->addSpacing(kUnderSign);
    layout->addWidget(m_sentence);
    layout->addStretch();
    layout->addWidget(m_action);

    fitLetters();

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
    if (!m_isConnecting && !isHidden() && m_sentence->text() == sentence)
        return; // said already
    m_isConnecting = false;
    m_turning.stop();
    const QPointer<ConferenceCover> life(this);
    tell(sentence, QStringLiteral("Tamam"));
    if (life)
        m_action->setFocus();
}

void ConferenceCover::tell(const QString& sentence, const QString& action)
{
    m_sentence->setText(sentence);
    m_action->setText(action);
    fitLetters();
    show();
    raise();
    update();
    const QPointer<ConferenceCover> life(this); // who hears of it may have the view deleted
    setAccessibleName(sentence);
    if (life)
        announce(*m_sentence, sentence);
}

void ConferenceCover::setTextScale(double scale)
{
    m_textScale = scale;
    fitLetters();
}

void ConferenceCover::fitLetters()
{
    for (double scale = m_textScale; !takeLetters(scale); scale = std::max(1.0, scale * kLettersStep)) { }
}

bool ConferenceCover::takeLetters(double scale)
{
    const int letters = static_cast<int>(std::lround(kLetters * scale));
    QFont font = m_sentence->font();
    font.setPixelSize(letters);
    m_sentence->setFont(font);
    m_action->setStyleSheet(actionStyle(letters));
    const int action = std::max(kActionHeight, QFontMetrics(font).height() + kActionAir);
    m_action->setFixedHeight(action);
    const int gaps = (layout()->count() - 1) * layout()->spacing();
    const int others = kMargin + kSignSize + kUnderSign + action + kBelowAction + gaps;
    const int wanted = m_sentence->heightForWidth(width() - 2 * kMargin);
    m_sentence->setMinimumHeight(std::max(0, std::min(height() - others, wanted))); // the layout would give it less
    return scale <= 1 || others + wanted <= height();
}

void ConferenceCover::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    fitLetters();
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
