#include "Platform/Capture/ReplayCamera.h"

#include "Platform/Capture/ReplayProducer.h"
#include "Platform/Foundation/MainQueue.h"

#include <QUuid>

#include <utility>

namespace kelvara {

struct ReplayCamera::State
{
    State(ReplaySource source, ReplayCameraOptions wanted)
        : options(std::move(wanted)), producer(std::move(source), options)
    { }

    const ReplayCameraOptions options;
    const QString uniqueID = QUuid::createUuid().toString(QUuid::WithoutBraces);
    bool refusesToStart = false;
    bool refusesConfiguration = false;
    bool refusesTorch = false;
    bool refusesOutput = false;
    bool inUseElsewhere = false;
    bool torch = false;
    int locks = 0;
    LifeToken life;
    ReplayProducer producer; ///< Last: its thread ends before the rest goes.
};

ReplayCamera::ReplayCamera(ReplaySource source, ReplayCameraOptions options, QObject* parent)
    : AVCaptureDevice(parent), d(std::make_unique<State>(std::move(source), std::move(options)))
{
    d->producer.setEnded([this, token = d->life.token()] { MainQueue::async(token, [this] { Q_EMIT ended(); }); });
}

ReplayCamera::~ReplayCamera()
{
    d->producer.stop();
}

QString ReplayCamera::uniqueID() const
{
    return d->uniqueID;
}

QString ReplayCamera::localizedName() const
{
    return d->options.name;
}

AVCaptureDevicePosition ReplayCamera::position() const
{
    return d->options.position;
}

bool ReplayCamera::isConnected() const
{
    return d->producer.isConnected();
}

int ReplayCamera::sensorRotation() const
{
    return d->options.sensorRotation;
}

bool ReplayCamera::isInUseByAnotherApplication() const
{
    return d->inUseElsewhere;
}

bool ReplayCamera::supportsVideoDataOutput() const
{
    return !d->refusesOutput;
}

bool ReplayCamera::hasTorch() const
{
    return d->options.hasTorch;
}

bool ReplayCamera::isTorchActive() const
{
    return d->torch;
}

bool ReplayCamera::lockForConfiguration()
{
    if (d->refusesConfiguration)
        return false;
    ++d->locks;
    return true;
}

void ReplayCamera::unlockForConfiguration()
{
    if (d->locks > 0)
        --d->locks;
}

bool ReplayCamera::setTorchModeOn(float level)
{
    if (!d->options.hasTorch || d->refusesTorch || !isConnected() || !(level > 0.0F && level <= 1.0F))
        return false;
    d->torch = true;
    return true;
}

void ReplayCamera::setTorchModeOff()
{
    d->torch = false;
}

bool ReplayCamera::start(AVCaptureFrameSink sink)
{
    if (d->refusesToStart || d->inUseElsewhere)
        return false;
    if (const auto problem = d->producer.problem())
        qWarning("%s", qUtf8Printable(*problem));
    return d->producer.start(std::move(sink));
}

void ReplayCamera::stop()
{
    d->producer.stop();
}

void ReplayCamera::setSource(ReplaySource source)
{
    d->producer.setSource(std::move(source));
}

void ReplayCamera::setStalled(bool stalled)
{
    d->producer.setStalled(stalled);
}

void ReplayCamera::setConnected(bool connected)
{
    if (!d->producer.setConnected(connected))
        return;
    if (!connected)
        d->torch = false;
    Q_EMIT connectedChanged(connected);
}

void ReplayCamera::setRefusesToStart(bool refuses)
{
    d->refusesToStart = refuses;
}

void ReplayCamera::setInUseByAnotherApplication(bool inUse)
{
    d->inUseElsewhere = inUse;
}

void ReplayCamera::setRefusesConfiguration(bool refuses)
{
    d->refusesConfiguration = refuses;
}

void ReplayCamera::setRefusesTorch(bool refuses)
{
    d->refusesTorch = refuses;
}

void ReplayCamera::setRefusesVideoDataOutput(bool refuses)
{
    d->refusesOutput = refuses;
}

int ReplayCamera::configurationLocks() const
{
    return d->locks;
}

std::int64_t ReplayCamera::deliveredFrames() const
{
    return d->producer.deliveredFrames();
}

ReplayCameraProvider::ReplayCameraProvider(
    std::shared_ptr<AVCaptureDevice> back, std::shared_ptr<AVCaptureDevice> front)
    : m_back(std::move(back)), m_front(std::move(front))
{ }

std::shared_ptr<AVCaptureDevice> ReplayCameraProvider::defaultDevice(
    AVCaptureDeviceType, AVMediaType media, AVCaptureDevicePosition position)
{
    switch (position) {
    case AVCaptureDevicePosition::Back:
        return m_back;
    case AVCaptureDevicePosition::Front:
        return m_front;
    case AVCaptureDevicePosition::Unspecified:
        break;
    }
    return defaultDevice(media);
}

std::shared_ptr<AVCaptureDevice> ReplayCameraProvider::defaultDevice(AVMediaType)
{
    return m_back ? m_back : m_front;
}

} // namespace kelvara
