#include "Demo/ChipHand.h"

#include "Platform/Chip/NFCPassportReaderError.h"

#include <QProgressBar>

namespace kelvara::demo {

namespace {

constexpr int kReactionMilliseconds = 500;
constexpr int kFetchMilliseconds = 1500; ///< To take the card up and hold it there.
constexpr int kSlipMilliseconds = 1000; ///< To get hold of it again.
constexpr int kAdmirationMilliseconds = 900; ///< Of success, whose picture comes slowly and does not stay long.
constexpr int kWellUnderWay = 40; ///< Percent.

/// The kind of a failure by what a person is told about it; empty for words that are not the library's.
QString kindOfFailure(const QString& message)
{
    using Kind = NFCPassportReaderError::Kind;
    for (const Kind kind : { Kind::NoReader, Kind::AlreadyReading, Kind::InvalidKey, Kind::MasterListUnusable,
             Kind::UserCancelled, Kind::Timeout, Kind::TagLost, Kind::WrongKey, Kind::UnsupportedCard, Kind::NotGenuine,
             Kind::UnreadableData, Kind::ConnectionFailed }) {
        NFCPassportReaderError error;
        error.kind = kind;
        if (error.message().simplified() == message)
            return QString::fromUtf8(nameOf(kind).data(), static_cast<qsizetype>(nameOf(kind).size()));
    }
    return {};
}

} // namespace

ChipHand::ChipHand(const ScreenReader& screen, Stage& stage, bool pressesButton, QObject* parent)
    : QObject(parent), m_screen(screen), m_stage(stage), m_pressesButton(pressesButton)
{ }

bool ChipHand::look()
{
    const auto phase = m_screen.sheetPhase();
    if (phase != m_phase)
        enter(phase);
    if (phase) {
        lookAtSheet();
        return true;
    }
    if (!m_screen.readButton())
        return false;
    lookAtStep();
    return true;
}

void ChipHand::enter(std::optional<SheetPhase> phase)
{
    m_phase = phase;
    m_phaseClock.start();
    m_hasHeld = false;
    if (!phase || *phase == SheetPhase::Done || *phase == SheetPhase::Failed)
        m_stage.takeFromReader();
    if (phase == SheetPhase::Present || phase == SheetPhase::Done)
        m_failure.clear();
    // Seen as it moves: on a busy machine the whole read may be over between two looks.
    if (const QProgressBar* bar = m_screen.sheetProgress())
        connect(bar, &QProgressBar::valueChanged, this, &ChipHand::lookAtProgress, Qt::UniqueConnection);
}

void ChipHand::lookAtStep()
{
    if (!m_stepClock.isValid())
        m_stepClock.start();
    if (m_stepClock.elapsed() < kReactionMilliseconds)
        return;
    Q_EMIT screenReached(QStringLiteral("chip-waiting"));
    // One failure is told, not tried over and over.
    if (m_pressesButton && !m_hasPressed) {
        m_hasPressed = true;
        Q_EMIT pressed(m_screen.readButton());
    }
}

void ChipHand::lookAtSheet()
{
    const bool isSettled = m_phaseClock.elapsed() >= kReactionMilliseconds; // the sheet and its picture stand still
    switch (*m_phase) {
    case SheetPhase::Present:
        if (isSettled)
            Q_EMIT screenReached(QStringLiteral("chip-present"));
        holdAfter(kFetchMilliseconds);
        break;
    case SheetPhase::Reading:
        break;
    case SheetPhase::PresentAgain:
        if (isSettled)
            Q_EMIT screenReached(QStringLiteral("chip-lost"));
        holdAfter(kSlipMilliseconds);
        break;
    case SheetPhase::Done:
        if (m_phaseClock.elapsed() >= kAdmirationMilliseconds)
            Q_EMIT screenReached(QStringLiteral("chip-read"));
        break;
    case SheetPhase::Failed:
        if (m_failure.isEmpty()) {
            const QString message = m_screen.sheetMessage();
            const QString kind = kindOfFailure(message);
            m_failure = QStringLiteral("The chip could not be read (%1): the reader's sheet says \"%2\"")
                            .arg(kind.isEmpty() ? QStringLiteral("of an unknown kind") : kind, message);
            Q_EMIT failed();
        }
        break;
    }
}

void ChipHand::lookAtProgress(int percent)
{
    if (percent >= kWellUnderWay && m_screen.sheetPhase() == SheetPhase::Reading)
        Q_EMIT screenReached(QStringLiteral("chip-reading"));
}

void ChipHand::holdAfter(int milliseconds)
{
    if (m_hasHeld || m_phaseClock.elapsed() < milliseconds)
        return;
    m_hasHeld = true;
    m_stage.holdToReader();
}

bool ChipHand::isAwaited() const
{
    if (m_phase)
        return (*m_phase == SheetPhase::Present || *m_phase == SheetPhase::PresentAgain) && !m_hasHeld;
    return m_stepClock.isValid() && !m_hasPressed;
}

QString ChipHand::trouble() const
{
    if (!m_failure.isEmpty())
        return m_failure;
    if (m_phase && *m_phase != SheetPhase::Done)
        return QStringLiteral("The reader's sheet says \"%1\"").arg(m_screen.sheetMessage());
    return m_screen.readButton() ? QStringLiteral("The chip's read waits for its button to be pressed.") : QString();
}

} // namespace kelvara::demo
