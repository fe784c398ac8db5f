#include "Tools/Replay/ReplaySession.h"

#include "Tools/Replay/EventLoop.h"
#include "Tools/Replay/Finger.h"
#include "Tools/Replay/FlowEvents.h"

#include <QApplication>
#include <QHBoxLayout>

#include <algorithm>

namespace kelvara::replay {

namespace {

constexpr std::int64_t kOnItsWay = 2;
/// Far longer than any look, but a camera that fails meanwhile must not be waited for.
constexpr std::chrono::milliseconds kLongestLook { 10'000 };

template<typename... Parts> struct Overloaded : Parts...
{
    using Parts::operator()...;
};
template<typename... Parts> Overloaded(Parts...) -> Overloaded<Parts...>;

std::optional<std::uint32_t> knownSpecimen(const FlowScript& script)
{
    const bool usesFiles = std::any_of(script.flow.begin(), script.flow.end(), [](const FlowStep& step) {
        const auto* shown = std::get_if<Show>(&step.act);
        return shown && !shown->file.isEmpty();
    });
    return usesFiles ? std::nullopt : std::optional(script.seed);
}

} // namespace

std::variant<std::unique_ptr<ReplaySession>, QString> ReplaySession::open(FlowScript script)
{
    auto device = ReplayDevice::make(script);
    if (auto* problem = std::get_if<QString>(&device))
        return std::move(*problem);
    return std::unique_ptr<ReplaySession>(
        new ReplaySession(std::move(script), std::get<std::unique_ptr<ReplayDevice>>(std::move(device))));
}

ReplaySession::ReplaySession(FlowScript script, std::unique_ptr<ReplayDevice> device)
    : m_script(std::move(script)), m_device(std::move(device)), m_recorder(m_log, knownSpecimen(m_script)),
      m_window(std::make_unique<QWidget>()), m_view(new QorvelKycView(m_device->services(), m_window.get())),
      m_watch(std::make_unique<ScreenWatch>(*m_view, m_log))
{
    auto* layout = new QHBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    m_window->resize(m_script.view);
    m_view->setForceNfc(m_script.forceNfc);
    m_view->setDelegate(&m_recorder);
    m_view->setDidConferenceTerminated(
        [this](const std::optional<QVariantMap>& data) { m_recorder.terminated(data, m_view && m_view->inJitsi()); });
    QObject::connect(m_view, &QorvelKycView::isScanningChanged, m_window.get(),
        [this](bool isScanning) { m_recorder.scanning(isScanning); });
    m_recorder.during = [this](const QString& call) { told(call); };
    m_device->conference()->hungUp = [this] { m_log.add(QStringLiteral("call:hangUp")); };
    m_window->show();
}

ReplaySession::~ReplaySession()
{
    m_watch->end();
    m_device->conference()->hungUp = nullptr;
}

void ReplaySession::run()
{
    const auto isOver = [this] { return m_unmet || m_log.count(QStringLiteral("destroyed")) > 0; };
    for (std::size_t i = 0; i < m_script.flow.size() && !isOver(); ++i) {
        const FlowStep& step = m_script.flow[i];
        if (play(step))
            continue;
        if (step.mayMiss)
            m_log.add(QStringLiteral("missed"), { { QStringLiteral("step"), step.written } });
        else
            m_unmet = QJsonObject { { QStringLiteral("index"), static_cast<int>(i) },
                { QStringLiteral("step"), step.written }, { QStringLiteral("screen"), m_watch->screen() },
                { QStringLiteral("isScanning"), m_view && m_view->isScanning() } };
    }
    finish();
}

bool ReplaySession::play(const FlowStep& step)
{
    if (const auto* wait = std::get_if<Wait>(&step.act))
        return await(*wait, step);
    if (const auto* tapped = std::get_if<Tap>(&step.act))
        return awaitAndTap(*tapped, step);
    m_log.add(QStringLiteral("do"), { { QStringLiteral("step"), step.written } });
    perform(step.act);
    settle();
    return true;
}

bool ReplaySession::holds(const QString& state) const
{
    if (state == u"ready")
        return canTap(*m_view, Control::Shutter);
    if (state.startsWith(u"step:"))
        return m_watch->screen() == state.mid(5);
    return m_view->isScanning() == (state == u"scanning:on");
}

bool ReplaySession::await(const Wait& wait, const FlowStep& step)
{
    if (wait.until.isEmpty()) {
        spinFor(wait.time);
        return true;
    }
    const bool hasCome = spinUntil(
        [&] { return !m_view || (isState(wait.until) ? holds(wait.until) : m_log.pass(wait.until)); }, step.atMost);
    if (!hasCome)
        return false;
    // A readiness passes again; whoever waits for it wants to use it before anything else happens.
    if (wait.until != u"ready")
        settle();
    return true;
}

bool ReplaySession::awaitAndTap(const Tap& tapped, const FlowStep& step)
{
    if (!spinUntil([&] { return !m_view || canTap(*m_view, tapped.control); }, step.atMost))
        return false;
    if (!m_view) // deleted meanwhile, and the script ends with it
        return true;
    m_log.add(QStringLiteral("do"), { { QStringLiteral("step"), step.written } });
    tap(*m_view, tapped.control);
    settle();
    return true;
}

void ReplaySession::perform(const Act& act)
{
    const auto withView = [this](auto action) {
        if (m_view)
            action(*m_view);
    };
    ReplayPage* const page = m_device->conference()->page();
    std::visit(Overloaded { [](const Wait&) {}, [](const Tap&) {}, [&](const Show& shown) { show(shown); },
                   [&](const PlugCameras& plugged) { m_device->plug(plugged); },
                   [&](const PlugReader& plugged) { m_device->plug(plugged); },
                   [&](const HoldChip&) { m_device->hold(); }, [&](const TakeChip&) { m_device->take(); },
                   [&](const FaultChip& fault) { m_device->setFaults(fault.faults); },
                   [&](const Join& joined) { join(joined.url); },
                   [&](const FailCall& failed) {
                       if (page)
                           Q_EMIT page->failed({ failed.kind }, {});
                   },
                   [&](const TellCall& toldCall) {
                       if (toldCall.event == CallEvent::Deaf)
                           m_device->conference()->isDeaf = true;
                       else if (!page)
                           return;
                       else if (toldCall.event == CallEvent::WillJoin)
                           Q_EMIT page->willJoin({});
                       else if (toldCall.event == CallEvent::Presented)
                           Q_EMIT page->presented();
                       else if (toldCall.event == CallEvent::Joined)
                           Q_EMIT page->joined({});
                       else
                           Q_EMIT page->ended({});
                   },
                   [&](const Background& background) { setBackground(background.entered); },
                   [&](const SetSteps& set) { withView([&](QorvelKycView& view) { view.setViewTypes(set.steps); }); },
                   [&](const GoTo& next) {
                       withView([&](QorvelKycView& view) {
                           switch (next.step) {
                           case ViewType::idPhoto:
                               return view.showIdPhotoView();
                           case ViewType::selfie:
                               return view.showSelfieView();
                           case ViewType::nfcRead:
                               return view.showNfcView();
                           case ViewType::jitsi:
                               return view.showJitsiView();
                           }
                       });
                   },
                   [&](const Scan& scan) {
                       withView([&](QorvelKycView& view) { scan.starts ? view.startScanning() : view.stopScanning(); });
                   },
                   [&](const Tick&) { withView([](QorvelKycView& view) { view.runTimedCode(); }); },
                   [&](const Resize& resized) { m_window->resize(resized.size); },
                   [&](const Destroy& destroyed) {
                       if (destroyed.inside.isEmpty())
                           destroy();
                       else
                           m_destroyIn.append(destroyed.inside);
                   } },
        act);
}

void ReplaySession::show(const Show& shown)
{
    const auto frames = [this, isSelfie = m_watch->screen() == u"selfie"] {
        const auto [back, front] = m_device->deliveredFrames();
        return isSelfie ? front : back;
    };
    m_device->show(shown);
    const QString screen = shown.picture == Picture::Selfie ? QStringLiteral("selfie") : QStringLiteral("idPhoto");
    if (!m_view || !m_view->isScanning() || m_watch->screen() != screen)
        return;
    // What was seen of the picture before must not be taken for this one: one more of each may be on its way.
    const std::int64_t delivered = frames() + kOnItsWay;
    const bool isShown = spinUntil([&] { return !m_view || frames() >= delivered; }, kLongestLook);
    const std::int64_t looks = m_device->looks() + kOnItsWay;
    if (isShown)
        static_cast<void>(spinUntil([&] { return !m_view || m_device->looks() >= looks; }, kLongestLook));
}

void ReplaySession::join(const QString& url)
{
    if (!m_view)
        return;
    const int before = callViews();
    m_view->setJitsiConference(url, QStringLiteral("room"), QStringLiteral("token"));
    if (m_view && callViews() > before)
        ++m_joined;
}

void ReplaySession::setBackground(bool entered)
{
    if (m_isInBackground && m_view && m_view->isScanning())
        m_problems.append(QStringLiteral("isScanning is true in the background."));
    m_isInBackground = entered;
    Q_EMIT qGuiApp->applicationStateChanged(entered ? Qt::ApplicationHidden : Qt::ApplicationActive);
}

void ReplaySession::told(const QString& call)
{
    if (m_destroyIn.contains(call))
        destroy();
}

void ReplaySession::destroy()
{
    if (!m_view)
        return;
    checkConferences(false);
    m_watch->end();
    delete m_view.data();
    m_recorder.viewGone();
    m_log.add(QStringLiteral("destroyed"));
}

QJsonObject ReplaySession::report(bool withTimes) const
{
    QJsonObject report { { QStringLiteral("met"), isMet() },
        { QStringLiteral("problems"), QJsonArray::fromStringList(m_problems) },
        { QStringLiteral("events"), m_log.toJson(withTimes) } };
    if (m_unmet)
        report.insert(QStringLiteral("unmet"), *m_unmet);
    return report;
}

} // namespace kelvara::replay
