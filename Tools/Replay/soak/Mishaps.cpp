#include "Tools/Replay/soak/Mishaps.h"

#include <QJsonArray>

namespace kelvara::soak {

namespace {

QJsonObject step(const char* name, const QJsonValue& value)
{
    return { { text(name), value } };
}

QJsonObject deviceMishap(SoakDice& dice)
{
    switch (dice.below(5)) {
    case 0: {
        QJsonObject plugged = step("camera", dice.one({ "unplug", "unplug", "plug", "plug", "plug" }));
        plugged.insert(text("which"), dice.one({ "both", "back", "front" }));
        return plugged;
    }
    case 1:
        return step("reader", dice.one({ "unplug", "plug", "plug" }));
    case 2:
        return step("background", dice.percent(40));
    case 3:
        return step("resize",
            QJsonObject { { text("width"), dice.one({ "390", "390", "844", "200", "0" }).toInt() },
                { text("height"), dice.one({ "844", "844", "390", "150", "0" }).toInt() } });
    default:
        return step("clock", text("tick"));
    }
}

QJsonObject personMishap(SoakDice& dice)
{
    switch (dice.below(4)) {
    case 0:
        return step("show", dice.one({ "front", "back", "selfie", "nothing" }));
    case 1:
        return step("chip", dice.one({ "take", "hold", "hold" }));
    case 2:
        return step("wait", dice.between(0, 120));
    default: {
        QJsonObject tapped
            = step("tap", dice.one({ "shutter", "close", "read", "next", "flash", "sheet", "call", "read" }));
        tapped.insert(text("atMost"), 0);
        tapped.insert(text("mayMiss"), true);
        return tapped;
    }
    }
}

QJsonObject hostMishap(SoakDice& dice)
{
    const auto someStep = [&dice] { return dice.one({ "idPhoto", "selfie", "nfcRead", "jitsi" }); };
    switch (dice.below(3)) {
    case 0:
        return step("goTo", someStep());
    case 1: {
        QJsonArray steps;
        for (int i = dice.below(4); i > 0; --i)
            steps.append(someStep());
        return step("steps", steps);
    }
    default:
        return step("scanning", dice.one({ "start", "start", "stop" }));
    }
}

} // namespace

QJsonObject mishap(SoakDice& dice)
{
    switch (dice.below(6)) {
    case 0:
    case 1:
        return deviceMishap(dice);
    case 2:
    case 3:
        return personMishap(dice);
    case 4:
        return dice.percent(50) ? step("conference", callEnd(dice)) : chipFault(dice);
    default:
        return hostMishap(dice);
    }
}

QJsonObject chipFault(SoakDice& dice)
{
    QJsonObject fault { { text("kind"),
                            dice.one({ "tagLost", "tagLost", "tagLost", "bitFlip", "statusWord", "garbage",
                                "emptyAnswer", "sessionEnd", "delay" }) },
        { text("command"), dice.between(1, 60) } };
    if (fault.value(text("kind")) == QJsonValue(text("delay")))
        fault.insert(text("delay"), dice.between(1, 400));
    if (dice.percent(10))
        fault.insert(text("counting"), text("presentation"));
    return step("chip", step("fault", fault));
}

QJsonObject chip(SoakDice& dice)
{
    QJsonObject profile;
    if (dice.percent(30))
        profile.insert(text("access"), QJsonObject { { text("pace"), QJsonValue::Null } });
    if (dice.percent(20))
        profile.insert(text("activeAuthentication"), QJsonObject { { text("curve"), text("brainpoolP256r1") } });
    if (dice.percent(20))
        profile.insert(text("forgeries"),
            QJsonArray { dice.one({ "changedDG1", "changedDG2", "swappedSecurityObject", "foreignSigner",
                "chipAuthenticationClone", "undecodablePortrait", "foreignDG1" }) });
    if (dice.percent(50))
        profile.insert(text("faults"), QJsonObject { { text("delay"), dice.between(1, 8) } });
    return profile;
}

QString callAddress(SoakDice& dice)
{
    return dice.one({ "join", "join", "join", "join", "join:http://meet.example.com", "join:no address at all" });
}

QString callEnd(SoakDice& dice)
{
    return dice.one({ "ended", "ended", "failed:connectionLost", "failed:serverUnreachable", "failed:pageCrashed",
        "deaf", "joined", "join" });
}

} // namespace kelvara::soak
