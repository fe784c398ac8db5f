#include "Platform/Chip/sheet/SheetPanel.h"

#include "Platform/Chip/sheet/SheetButton.h"
#include "Platform/Chip/sheet/SheetIllustration.h"
#include "Platform/Chip/sheet/SheetProgress.h"
#include "Platform/Chip/sheet/SheetStyle.h"
#include "Platform/Chip/sheet/SheetText.h"

#include <QFontInfo>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>

#include <algorithm>
#include <cmath>

namespace kelvara::chip::sheet {

namespace {

constexpr int kSide = 24;
constexpr int kTop = 28;
constexpr int kUnderTitle = 16;
constexpr int kUnderIllustration = 18;
constexpr int kUnderMessage = 20;
constexpr int kUnderProgress = 20;
constexpr int kBottom = 20;

constexpr int kLargestIllustration = 190;
constexpr int kSmallestIllustration = 90;
constexpr double kScaleStep = 0.9;

int scaled(int size, double scale)
{
    return static_cast<int>(std::lround(size * scale));
}

} // namespace

SheetPanel::SheetPanel(QWidget* parent)
    : QWidget(parent), m_title(new SheetText(this)), m_illustration(new SheetIllustration(this)),
      m_messageArea(new QScrollArea(this)), m_message(new SheetText), m_progress(new SheetProgress(this)),
      m_button(new SheetButton(this))
{
    m_title->setColor(kTitleColor);
    m_title->setObjectName(QStringLiteral("title"));
    m_message->setObjectName(QStringLiteral("message"));
    m_button->setObjectName(QStringLiteral("button"));
    m_progress->setObjectName(QStringLiteral("progress"));
    m_illustration->setObjectName(QStringLiteral("illustration"));

    m_messageArea->setFrameShape(QFrame::NoFrame);
    m_messageArea->setFocusPolicy(Qt::NoFocus);
    m_messageArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_messageArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_messageArea->setWidget(m_message);
    QScroller::grabGesture(m_messageArea->viewport(), QScroller::TouchGesture);
    QPalette surface = palette();
    for (const auto role : { QPalette::Window, QPalette::Base })
        surface.setColor(role, kSurface);
    m_messageArea->setPalette(surface);
}

bool SheetPanel::show(SheetPhase phase, const QString& title, const QString& message, int percent)
{
    // Circles that fill are no news to the ear: `announceProgress` says them as a number.
    const bool isNews = title != m_title->text() || spokenText(message) != spokenMessage();
    m_title->setText(title);
    m_message->setText(message);
    m_illustration->setPhase(phase);
    m_progress->advance(percent, m_moves);
    switch (phase) {
    case SheetPhase::Done:
        m_progress->setColor(kSuccess);
        break;
    case SheetPhase::Failed:
        m_progress->setColor(kFailure);
        break;
    case SheetPhase::PresentAgain:
        m_progress->setColor(kWarning);
        break;
    default:
        m_progress->setColor(kAccent);
    }
    const bool isOver = phase == SheetPhase::Done || phase == SheetPhase::Failed;
    m_button->setText(isOver ? QStringLiteral("Kapat") : QString::fromUtf8("İptal"));
    return isNews;
}

QString SheetPanel::spokenMessage() const
{
    return spokenText(m_message->text());
}

void SheetPanel::announceProgress()
{
    m_progress->announceValue();
}

void SheetPanel::setMoves(bool moves)
{
    m_moves = moves;
    m_illustration->setMoves(moves);
}

double SheetPanel::wantedScale() const
{
    return std::max({ 1.0, m_textScale, QFontInfo(font()).pixelSize() / double(kTextSize) });
}

SheetPanel::Arrangement SheetPanel::arrangementAt(double scale, int width, int highest) const
{
    const int inside = std::max(1, width - 2 * kSide);
    Arrangement made { scale, m_title->heightForWidth(inside, scaled(kTitleSize, scale)),
        m_message->heightForWidth(inside, scaled(kTextSize, scale)), 0, 0, 0 };
    if (width == m_roomWidth && scale == m_roomScale)
        made.message = std::max(made.message, m_roomForMessage);
    QFont letters = m_button->font();
    letters.setPixelSize(scaled(kButtonTextSize, scale));
    made.button = std::max(52, QFontMetrics(letters).height() + 28);
    const int others = kTop + made.title + kUnderTitle + made.message + kUnderMessage + SheetProgress::kThickness
        + kUnderProgress + made.button + kBottom;
    const int rest = highest - others - kUnderIllustration;
    made.illustration = rest >= kSmallestIllustration ? std::min(rest, kLargestIllustration) : 0;
    made.total = others + (made.illustration > 0 ? made.illustration + kUnderIllustration : 0);
    return made;
}

SheetPanel::Arrangement SheetPanel::arrangementFor(int width, int highest) const
{
    double scale = wantedScale();
    Arrangement made = arrangementAt(scale, width, highest);
    while (made.total > highest && scale > 1) {
        scale = std::max(1.0, scale * kScaleStep);
        made = arrangementAt(scale, width, highest);
    }
    return made;
}

void SheetPanel::setLetters(double scale)
{
    const auto set = [&](QWidget* widget, int size, QFont::Weight weight) {
        QFont letters = widget->font();
        letters.setPixelSize(scaled(size, scale));
        letters.setWeight(weight);
        widget->setFont(letters);
    };
    set(m_title, kTitleSize, QFont::Bold);
    set(m_message, kTextSize, QFont::Normal);
    set(m_button, kButtonTextSize, QFont::DemiBold);
}

void SheetPanel::arrange(int width, int highest)
{
    Arrangement made = arrangementFor(width, highest);
    m_roomWidth = width;
    m_roomScale = made.scale;
    m_roomForMessage = made.message;
    setLetters(made.scale);

    const int inside = std::max(1, width - 2 * kSide);
    const int missing = std::max(0, made.total - highest);
    made.message = std::max(0, made.message - missing);
    made.total -= missing;
    const bool scrolls = missing > 0;
    m_messageArea->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const int line = scrolls ? inside - m_messageArea->verticalScrollBar()->sizeHint().width() : inside;

    int y = kTop;
    const auto place = [&](QWidget* widget, int height, int gap) {
        widget->setGeometry(kSide, y, inside, height);
        y += height + gap;
    };
    place(m_title, made.title, kUnderTitle);
    m_illustration->setVisible(made.illustration > 0);
    if (made.illustration > 0)
        place(m_illustration, made.illustration, kUnderIllustration);
    place(m_messageArea, made.message, kUnderMessage);
    m_message->resize(line, std::max(m_message->heightForWidth(line), made.message));
    place(m_progress, SheetProgress::kThickness, kUnderProgress);
    place(m_button, made.button, kBottom);
    resize(width, made.total);
}

void SheetPanel::scrollMessage(int pages)
{
    m_messageArea->verticalScrollBar()->triggerAction(
        pages > 0 ? QScrollBar::SliderPageStepAdd : QScrollBar::SliderPageStepSub);
}

void SheetPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSurface);
    // Only the upper corners are round: the lower ones lie beyond the edge.
    painter.drawRoundedRect(QRectF(rect()).adjusted(0, 0, 0, kPanelRadius), kPanelRadius, kPanelRadius);
}

} // namespace kelvara::chip::sheet
