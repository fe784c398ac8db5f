#include "Demo/ScriptedPerson.h"

#include <QAbstractButton>
#include <QTest>
#include <QWindow>

#include <array>

namespace kelvara::demo {

namespace {

constexpr int kGlanceMilliseconds = 20;
constexpr int kReactionMilliseconds = 500;
/// Just after a detection has grown old the card comes back a frame before the face does: a short look may be wrong.
constexpr int kSteadyMilliseconds = 300;

/// What is photographed, in the flow's order.
struct PhotoScene
{
    Subject subject;
    const char* name;
};
constexpr std::array kScenes { PhotoScene { Subject::CardFront, "front" }, PhotoScene { Subject::CardBack, "back" },
    PhotoScene { Subject::Selfie, "selfie" } };

QString screenName(qsizetype scene, const char* state)
{
    return QStringLiteral("%1-%2").arg(
        QLatin1String(kScenes[static_cast<std::size_t>(scene)].name), QLatin1String(state));
}

} // namespace

ScriptedPerson::ScriptedPerson(DemoHost& host, Stage& stage, bool pressesButtons, QObject* parent)
    : QObject(parent), m_host(host), m_stage(stage), m_screen(host.view()), m_chipHand(m_screen, stage, pressesButtons),
      m_pressesButtons(pressesButtons)
{
    beginScene(0);
    connect(&m_chipHand, &ChipHand::screenReached, this, &ScriptedPerson::reach);
    connect(&m_chipHand, &ChipHand::pressed, this, &ScriptedPerson::press);
    connect(&m_chipHand, &ChipHand::failed, this, [this] {
        if (m_pressesButtons)
            Q_EMIT gaveUp();
    });
    connect(&m_timer, &QTimer::timeout, this, &ScriptedPerson::look);
    m_timer.start(kGlanceMilliseconds);
}

std::optional<Subject> ScriptedPerson::awaited() const
{
    if (m_scene >= std::ssize(kScenes))
        return std::nullopt;
    return kScenes[static_cast<std::size_t>(m_scene)].subject;
}

qint64 ScriptedPerson::unreadyMilliseconds() const
{
    return m_readyClock.isValid() ? 0 : m_sceneClock.elapsed();
}

bool ScriptedPerson::isActing() const
{
    if (!awaited())
        return m_chipHand.isAwaited();
    return m_sceneClock.elapsed() < kReactionMilliseconds || (m_presented && !m_stage.settled())
        || m_readyClock.isValid();
}

void ScriptedPerson::beginScene(qsizetype scene)
{
    for (; m_scene < scene; ++m_scene)
        m_stage.photographed(kScenes[static_cast<std::size_t>(m_scene)].subject);
    m_presented = false;
    m_sceneClock.start();
    m_readyClock.invalidate();
}

void ScriptedPerson::look()
{
    if (m_host.photographs() > m_scene)
        beginScene(m_host.photographs());
    if (m_sceneClock.elapsed() < kReactionMilliseconds)
        return;
    if (!awaited()) {
        lookAfterPhotographs();
        return;
    }
    if (!m_presented) {
        if (!m_screen.shutter())
            return; // the step's screen is not there yet
        m_presented = true;
        reach(m_screen.asksToTurn() ? QStringLiteral("flip-hint") : screenName(m_scene, "waiting"));
        m_stage.present(*awaited());
    }
    waitForReadiness();
}

void ScriptedPerson::lookAfterPhotographs()
{
    if (m_chipHand.look() || !m_screen.shows(QString::fromUtf8("Süreç tamamlanmıştır.")))
        return;
    m_timer.stop();
    reach(QStringLiteral("finished"));
    Q_EMIT finished();
}

void ScriptedPerson::waitForReadiness()
{
    // Nobody presses while the card is still moving or the hint lies over it.
    if (!m_screen.isReady() || !m_stage.settled() || m_screen.asksToTurn()) {
        m_readyClock.invalidate();
        return;
    }
    if (!m_readyClock.isValid())
        m_readyClock.start();
    if (m_readyClock.elapsed() < kSteadyMilliseconds)
        return;
    reach(screenName(m_scene, "ready"));
    if (m_pressesButtons) {
        m_readyClock.invalidate();
        press(m_screen.shutter());
    }
}

void ScriptedPerson::leave()
{
    if (const QAbstractButton* button = m_screen.closeButton())
        press(button);
}

void ScriptedPerson::press(const QAbstractButton* button)
{
    const QWidget* window = button->window();
    // Through the window, as a finger would: whatever lies above the button gets the click instead.
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, button->mapTo(window, button->rect().center()));
}

void ScriptedPerson::reach(const QString& name)
{
    if (m_reached.contains(name))
        return;
    m_reached.append(name);
    Q_EMIT screenReached(name);
}

} // namespace kelvara::demo
