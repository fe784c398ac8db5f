#include "Demo/CallScene.h"

namespace kelvara::demo {

namespace {

constexpr int kGlanceMilliseconds = 20;
constexpr int kArrangingMilliseconds = 1200; ///< As a bank's own server would take.
constexpr int kPictureMilliseconds = 2500; ///< Into the call both are well to be seen.
constexpr int kTalkMilliseconds = 4000;

} // namespace

CallScene::CallScene(DemoHost& host, std::unique_ptr<CallDesk> desk, std::function<QImage()> ownPicture)
    : m_host(host), m_screen(host.view()), m_desk(std::move(desk)), m_ownPicture(std::move(ownPicture))
{
    connect(&host, &DemoHost::callWanted, this, [this] { m_timer.start(kGlanceMilliseconds); });
    connect(&m_timer, &QTimer::timeout, this, &CallScene::look);
    host.view().setDidConferenceTerminated([this](const std::optional<QVariantMap>& data) { ended(data); });
}

bool CallScene::isPeoplesTurn() const
{
    return m_moment == Moment::Waiting || m_moment == Moment::Talking
        || (m_moment == Moment::Ending && m_timer.isActive());
}

void CallScene::enter(Moment moment)
{
    m_moment = moment;
    m_clock.start();
}

void CallScene::look()
{
    switch (m_moment) {
    case Moment::Before:
        if (m_screen.sheetPhase()
            || !m_screen.shows(
                QString::fromUtf8("Birazdan müşteri temsilcisine bağlanacaksınız. \nLütfen bekleyiniz.")))
            return;
        Q_EMIT screenReached(QStringLiteral("call-waiting"));
        enter(Moment::Waiting);
        break;
    case Moment::Waiting:
        if (m_clock.hasExpired(kArrangingMilliseconds))
            open();
        break;
    case Moment::Joining:
        if (!m_host.view().inJitsi())
            return;
        m_report.insert(QStringLiteral("joinMilliseconds"), m_clock.elapsed());
        enter(Moment::Talking);
        break;
    case Moment::Talking:
        if (!m_clock.hasExpired(kPictureMilliseconds))
            return;
        Q_EMIT screenReached(QStringLiteral("call"));
        m_moment = Moment::Ending;
        break;
    case Moment::Ending: {
        if (!m_clock.hasExpired(kTalkMilliseconds))
            return;
        m_timer.stop();
        const QJsonObject seen = m_desk->report();
        for (auto entry = seen.begin(); entry != seen.end(); ++entry)
            m_report.insert(entry.key(), entry.value());
        m_report.insert(QStringLiteral("talkMilliseconds"), m_clock.elapsed());
        m_desk->hangUp();
        break;
    }
    case Moment::Over:
        break;
    }
}

void CallScene::open()
{
    enter(Moment::Joining);
    const CallDesk::Conference conference = m_desk->arrange(m_ownPicture());
    m_host.view().setJitsiConference(conference.url, conference.room, conference.token);
}

void CallScene::ended(const std::optional<QVariantMap>& data)
{
    m_timer.stop();
    const QString message = data.value_or(QVariantMap()).value(QStringLiteral("message")).toString();
    enter(Moment::Over);
    // The view takes the call away a turn of the event loop later.
    QTimer::singleShot(kGlanceMilliseconds, this, [this, message] {
        Q_EMIT screenReached(QStringLiteral("call-ended"));
        Q_EMIT finished(message);
    });
}

} // namespace kelvara::demo
