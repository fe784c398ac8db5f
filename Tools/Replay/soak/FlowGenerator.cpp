#include "Tools/Replay/soak/FlowGenerator.h"

#include "Tools/Replay/soak/Mishaps.h"
#include "Tools/Replay/soak/SoakDice.h"

#include <QJsonArray>
#include <QStringList>

#include <string>

namespace kelvara::soak {

namespace {

/// Writes one flow's steps.
class Writer
{
public:
    Writer(SoakDice& dice, bool isTold, bool hasCameras)
        : m_dice(dice), m_hasCameras(hasCameras), m_patience(isTold ? 700 : 2500)
    { }

    void write();
    [[nodiscard]] QJsonArray steps() const { return m_steps; }

private:
    /// A step of the person, and perhaps something that comes in between.
    void add(const QJsonObject& step);
    void add(const char* name, const char* value) { add({ { text(name), text(value) } }); }
    void waitFor(const char* until, int atMost);
    void tap(const char* control, int atMost);
    void setRight(const char* step);
    void takeCardPhotos();
    void takeSelfie();
    void readChip();
    void holdCall();
    void comeToRest();

    SoakDice& m_dice;
    const bool m_hasCameras;
    const int m_patience;
    const int m_mishapPercent = m_dice.one({ "0", "5", "15", "40" }).toInt();
    QJsonArray m_steps;
};

void Writer::add(const QJsonObject& step)
{
    m_steps.append(step);
    while (m_dice.percent(m_mishapPercent))
        m_steps.append(mishap(m_dice));
}

void Writer::waitFor(const char* until, int atMost)
{
    add({ { text("wait"), text(until) }, { text("atMost"), atMost }, { text("mayMiss"), true } });
}

void Writer::tap(const char* control, int atMost)
{
    add({ { text("tap"), text(control) }, { text("atMost"), atMost }, { text("mayMiss"), true } });
}

/// Most persons and hosts see that something is wrong, and mend it: else few flows would come far.
void Writer::setRight(const char* step)
{
    if (m_mishapPercent > 0 && m_dice.percent(70)) {
        add({ { text("background"), false } });
        add("camera", "plug");
        add("reader", "plug");
        add("scanning", "start");
        add("goTo", step);
    }
    waitFor((std::string("step:") + step).c_str(), 100);
}

void Writer::takeCardPhotos()
{
    setRight("idPhoto");
    add("show", "front");
    if (m_hasCameras)
        tap("shutter", m_patience);
    add("show", "back");
    add("clock", "tick");
    if (m_hasCameras)
        tap("shutter", m_patience);
}

void Writer::takeSelfie()
{
    setRight("selfie");
    add("show", "selfie");
    if (m_hasCameras)
        tap("shutter", m_patience);
}

void Writer::readChip()
{
    setRight("nfcRead");
    if (m_dice.percent(40))
        add(chipFault(m_dice));
    tap("read", 100);
    add("chip", "hold");
    if (m_dice.percent(30)) {
        waitFor("sheet:presentAgain", 400);
        add("chip", "hold");
    }
    waitFor(m_dice.percent(20) ? "sheet:failed" : "delegate:didReadNfc", 1000);
    if (m_dice.percent(30))
        tap("sheet", 400);
    add("goTo", "jitsi");
}

void Writer::holdCall()
{
    setRight("jitsi");
    const int calls = m_dice.between(1, 2);
    for (int call = 0; call < calls; ++call) {
        add({ { text("conference"), callAddress(m_dice) } });
        if (m_dice.percent(80))
            add("conference", "willJoin");
        if (m_dice.percent(60))
            add("conference", "presented");
        if (m_dice.percent(80))
            add("conference", "joined");
        if (m_dice.percent(70))
            add({ { text("conference"), callEnd(m_dice) } });
        if (m_dice.percent(30))
            tap("call", 100);
    }
}

void Writer::comeToRest()
{
    const auto plain = [this](const char* name, const QJsonValue& value) {
        m_steps.append(QJsonObject { { text(name), value } });
    };
    plain("background", false);
    plain("camera", text("plug"));
    plain("reader", text("plug"));
    plain("conference", text("ended"));
    plain("goTo", text("idPhoto"));
    plain("scanning", text("start"));
    if (!m_hasCameras)
        return;
    m_steps.append(QJsonObject { { text("wait"), text("scanning:on") }, { text("atMost"), 20'000 } });
    if (m_dice.percent(50)) {
        plain("scanning", text("stop"));
        plain("wait", text("scanning:off"));
    }
}

void Writer::write()
{
    QStringList steps { text("idPhoto"), text("selfie"), text("nfcRead"), text("jitsi") };
    while (steps.size() > 1 && m_dice.percent(30))
        steps.removeAt(m_dice.below(static_cast<int>(steps.size())));
    if (m_dice.percent(20))
        steps.swapItemsAt(0, steps.size() - 1);
    if (m_dice.percent(20))
        add({ { text("destroy"),
            text("in:")
                + m_dice.one({ "didCaptureIdFrontPhoto", "didCaptureIdBackPhoto", "didCaptureSelfiePhoto", "didReadNfc",
                    "didDetectSdkDataBeforeJitsi", "didClose", "terminated" }) } });
    add({ { text("steps"), QJsonArray::fromStringList(steps) } });
    for (const QString& step : steps) {
        if (step == u"idPhoto")
            takeCardPhotos();
        else if (step == u"selfie")
            takeSelfie();
        else if (step == u"nfcRead")
            readChip();
        else
            holdCall();
    }
    tap("close", 100);
    if (m_dice.percent(20)) {
        QJsonArray cut; // somewhere in the midst
        const int end = m_dice.between(1, static_cast<int>(m_steps.size()));
        for (int i = 0; i < end; ++i)
            cut.append(m_steps[i]);
        cut.append(QJsonObject { { text("destroy"), text("now") } });
        m_steps = cut;
        return;
    }
    comeToRest();
}

QJsonObject sizeObject(int width, int height)
{
    return { { text("width"), width }, { text("height"), height } };
}

} // namespace

QJsonObject generateFlow(std::uint32_t seed)
{
    SoakDice dice(seed);
    const bool isTold = dice.percent(75);
    const bool hasCameras = dice.percent(95);
    QJsonObject script { { text("about"), QStringLiteral("Soak, flow %1.").arg(seed) },
        { text("seed"), dice.between(1, kSpecimens) }, { text("detectors"), text(isTold ? "told" : "real") },
        { text("frame"), sizeObject(720, 1280) }, { text("framesPerSecond"), dice.one({ "15", "30", "60" }).toInt() },
        { text("cameras"), hasCameras }, { text("reader"), dice.percent(75) }, { text("calls"), dice.percent(90) },
        { text("forceNfc"), dice.percent(5) },
        { text("trust"), dice.one({ "issuer", "issuer", "nobody", "somebodyElse" }) }, { text("chip"), chip(dice) } };
    Writer writer(dice, isTold, hasCameras);
    writer.write();
    script.insert(text("flow"), writer.steps());
    return script;
}

} // namespace kelvara::soak
