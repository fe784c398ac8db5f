#include "Platform/Capture/AVCaptureSession.h"

#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/AVCaptureDeviceInput.h"
#include "Platform/Capture/AVCaptureVideoDataOutput.h"
#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"
#include "Platform/Capture/CaptureHub.h"
#include "Platform/Foundation/CameraArbiter.h"

#include <algorithm>

namespace kelvara {

struct AVCaptureSession::State
{
    std::vector<std::shared_ptr<AVCaptureInput>> inputs;
    std::vector<std::shared_ptr<AVCaptureVideoDataOutput>> outputs;
    std::vector<AVCaptureVideoPreviewLayer*> previews;
    AVCaptureSessionPreset preset = AVCaptureSessionPreset::High;
    bool wideColor = true;
    int configurations = 0; ///< How often `beginConfiguration` waits for its commit.

    bool wanted = false; ///< The owner wants the session to run.
    bool running = false; ///< The device was started and not stopped.
    bool told = false; ///< What `runningChanged` last said.
    std::shared_ptr<AVCaptureDeviceInput> active; ///< The input in effect, as of the last commit.
    QMetaObject::Connection plug;
    QMetaObject::Connection release;
    std::shared_ptr<CaptureHub> hub = std::make_shared<CaptureHub>();

    [[nodiscard]] std::shared_ptr<AVCaptureDeviceInput> deviceInput() const
    {
        for (const auto& input : inputs)
            if (auto device = std::dynamic_pointer_cast<AVCaptureDeviceInput>(input))
                return device;
        return nullptr;
    }

    void tellPreview(AVCaptureVideoPreviewLayer& preview) const
    {
        if (active)
            preview.inputChanged(true, active->device()->position() == AVCaptureDevicePosition::Front,
                active->device()->sensorRotation());
        else
            preview.inputChanged(false, false, 0);
    }

    void stop()
    {
        hub->close();
        for (const auto& output : outputs)
            output->dropQueued();
        if (std::exchange(running, false)) {
            AVCaptureDevice* const device = active->device().get();
            device->stop();
            // Later, as this session is still in the midst of letting go, and who hears of it may delete it.
            QMetaObject::invokeMethod(device, &AVCaptureDevice::released, Qt::QueuedConnection);
        }
    }

    void updateReceivers() { hub->setReceivers(outputs, previews); }
};

AVCaptureSession::AVCaptureSession(QObject* parent) : QObject(parent), d(std::make_unique<State>())
{
    connect(&CameraArbiter::shared(), &CameraArbiter::interruptedChanged, this, [this] {
        if (CameraArbiter::shared().isInterrupted()) { // at once, also in the midst of a configuration
            d->stop();
            tell();
        } else {
            update();
        }
    });
}

AVCaptureSession::~AVCaptureSession()
{
    d->stop();
    d->hub->setReceivers({}, {});
    for (const auto& output : d->outputs)
        output->detach();
}

void AVCaptureSession::beginConfiguration()
{
    ++d->configurations;
}

void AVCaptureSession::commitConfiguration()
{
    if (d->configurations == 0 || --d->configurations > 0)
        return;
    update();
}

void AVCaptureSession::update()
{
    if (d->configurations > 0)
        return;
    const auto input = d->deviceInput();
    if (input != d->active) {
        d->stop();
        disconnect(d->plug);
        disconnect(d->release);
        d->active = input;
        if (input) {
            const AVCaptureDevice* device = input->device().get();
            d->plug = connect(device, &AVCaptureDevice::connectedChanged, this, [this] { update(); });
            d->release = connect(device, &AVCaptureDevice::released, this, [this] { update(); });
        }
        for (AVCaptureVideoPreviewLayer* preview : d->previews)
            d->tellPreview(*preview);
    }
    if (d->active)
        for (const auto& output : d->outputs)
            output->firstConnection()->setSensorRotation(d->active->device()->sensorRotation());
    d->updateReceivers();

    const bool possible
        = d->wanted && d->active && d->active->device()->isConnected() && !CameraArbiter::shared().isInterrupted();
    if (!possible) {
        d->stop();
    } else if (!d->running) {
        d->running = d->active->device()->start(
            [hub = d->hub, run = d->hub->open()](const CMSampleBuffer& frame) { hub->deliver(run, frame); });
        if (!d->running)
            d->hub->close();
    }
    tell();
}

void AVCaptureSession::tell()
{
    // Last in every caller: the receiver may delete the session.
    if (d->told == d->running)
        return;
    d->told = d->running;
    Q_EMIT runningChanged(d->told);
}

bool AVCaptureSession::canSetSessionPreset(AVCaptureSessionPreset preset) const
{
    const auto input = d->deviceInput();
    return !input || input->device()->supportsPreset(preset);
}

void AVCaptureSession::setSessionPreset(AVCaptureSessionPreset preset)
{
    if (canSetSessionPreset(preset))
        d->preset = preset;
}

AVCaptureSessionPreset AVCaptureSession::sessionPreset() const
{
    return d->preset;
}

void AVCaptureSession::setAutomaticallyConfiguresCaptureDeviceForWideColor(bool automatic)
{
    d->wideColor = automatic;
}

bool AVCaptureSession::canAddInput(const std::shared_ptr<AVCaptureInput>& input) const
{
    if (!input || std::find(d->inputs.begin(), d->inputs.end(), input) != d->inputs.end())
        return false;
    const auto device = std::dynamic_pointer_cast<AVCaptureDeviceInput>(input);
    return !device || (device->device()->isConnected() && !device->device()->isInUseByAnotherApplication());
}

void AVCaptureSession::addInput(const std::shared_ptr<AVCaptureInput>& input)
{
    const bool known = std::find(d->inputs.begin(), d->inputs.end(), input) != d->inputs.end();
    if (!input || known || (d->deviceInput() && std::dynamic_pointer_cast<AVCaptureDeviceInput>(input)))
        return;
    d->inputs.push_back(input);
    update();
}

void AVCaptureSession::removeInput(const std::shared_ptr<AVCaptureInput>& input)
{
    if (std::erase(d->inputs, input) > 0)
        update();
}

const std::vector<std::shared_ptr<AVCaptureInput>>& AVCaptureSession::inputs() const
{
    return d->inputs;
}

bool AVCaptureSession::canAddOutput(const std::shared_ptr<AVCaptureVideoDataOutput>& output) const
{
    if (!output || output->isAttached())
        return false;
    const auto input = d->deviceInput();
    return !input || input->device()->supportsVideoDataOutput();
}

void AVCaptureSession::addOutput(const std::shared_ptr<AVCaptureVideoDataOutput>& output)
{
    if (!canAddOutput(output))
        return;
    output->attach();
    d->outputs.push_back(output);
    update();
}

const std::vector<std::shared_ptr<AVCaptureVideoDataOutput>>& AVCaptureSession::outputs() const
{
    return d->outputs;
}

void AVCaptureSession::startRunning()
{
    if (!d->deviceInput())
        return;
    d->wanted = true;
    update();
}

void AVCaptureSession::stopRunning()
{
    d->wanted = false;
    d->stop();
    tell();
}

bool AVCaptureSession::isRunning() const
{
    return d->running;
}

void AVCaptureSession::attachPreview(AVCaptureVideoPreviewLayer* layer)
{
    d->previews.push_back(layer);
    d->tellPreview(*layer);
    d->updateReceivers();
}

void AVCaptureSession::detachPreview(AVCaptureVideoPreviewLayer* layer)
{
    std::erase(d->previews, layer);
    d->updateReceivers();
}

} // namespace kelvara
