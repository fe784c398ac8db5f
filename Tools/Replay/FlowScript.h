#pragma once

#include "Kelvara/ViewType.h"
#include "Platform/Chip/software/ChipProfile.h"
#include "Platform/Conference/ConferenceError.h"

#include <QJsonObject>
#include <QList>
#include <QSize>
#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace kelvara::replay {

/// What a specimen's picture is of.
enum class Picture { Front, Back, Selfie, Nothing };

/// What stands before the camera: the seed's specimen, or a picture, folder or video.
struct Show
{
    Picture picture = Picture::Nothing; ///< A selfie stands before the front camera, a card before the back one.
    QString file; ///< Empty: the specimen.
};

/// Waits for a state ("ready", "step:…", "scanning:…"), for an event that the log gets, or for nothing but time.
struct Wait
{
    QString until; ///< Empty: only time passes.
    std::chrono::milliseconds time { 0 };
};

enum class Control { Shutter, Close, Read, Next, Flash, Sheet, Call };
struct Tap
{
    Control control = Control::Shutter;
};

enum class Plug { In, Out };
enum class Cameras { Both, Back, Front };
struct PlugCameras
{
    Plug plug = Plug::Out;
    Cameras which = Cameras::Both;
};
struct PlugReader
{
    Plug plug = Plug::Out;
};

struct HoldChip
{ };
struct TakeChip
{ };
struct FaultChip
{
    chip::software::ChipFaults faults; ///< From the next command on.
};

/// The host opens a conference; what then happens in it is told by the other two.
struct Join
{
    QString url;
};
enum class CallEvent { WillJoin, Presented, Joined, Ended, Deaf };
struct TellCall
{
    CallEvent event = CallEvent::Joined;
};
struct FailCall
{
    ConferenceErrorKind kind = ConferenceErrorKind::ConnectionLost;
};

struct Background
{
    bool entered = true;
};
struct SetSteps
{
    QList<ViewType> steps;
};
struct GoTo
{
    ViewType step = ViewType::idPhoto;
};
struct Scan
{
    bool starts = true;
};
/// What the view's two-second timer does, at once.
struct Tick
{ };
struct Resize
{
    QSize size;
};
/// Deletes the view: at once, or inside the named call ("didCaptureIdFrontPhoto" …, "terminated").
struct Destroy
{
    QString inside;
};

using Act = std::variant<Show, Wait, Tap, PlugCameras, PlugReader, HoldChip, TakeChip, FaultChip, Join, TellCall,
    FailCall, Background, SetSteps, GoTo, Scan, Tick, Resize, Destroy>;

/// One line of a script.
struct FlowStep
{
    Act act;
    std::chrono::milliseconds atMost { 20'000 }; ///< How long a wait or a tap's control is waited for.
    bool mayMiss = false; ///< What does not come in time is left out, and the script goes on.
    QJsonObject written; ///< As it stands in the file, for the log.
};

/// A whole session: the device, the person before it, and what happens. A value.
struct FlowScript
{
    enum class Detectors {
        Real,
        Told, ///< Card and face are taken to be where the script shows them; the zone is read for real.
    };
    enum class Trust { Issuer, Nobody, SomebodyElse };

    std::uint32_t seed = 1;
    QSize view { 390, 844 }; ///< Points.
    QSize frame { 1080, 1920 };
    double framesPerSecond = 30;
    bool hasCameras = true;
    bool hasReader = true;
    bool hasCalls = true;
    bool forceNfc = false;
    Detectors detectors = Detectors::Real;
    Trust trust = Trust::Issuer;
    chip::software::ChipProfile chip; ///< With the specimen's zone, portrait and details where the file names none.
    QStringList chipFields; ///< Those that the file names.
    std::vector<FlowStep> flow;
};

} // namespace kelvara::replay
