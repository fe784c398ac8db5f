#pragma once

#include "Platform/Capture/ReplayCamera.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Platform/PlatformServices.h"
#include "Tools/Replay/FlowScript.h"
#include "Tools/Replay/ReplayConference.h"
#include "Tools/Replay/ToldDetectors.h"

#include <QTemporaryFile>

#include <memory>
#include <variant>

namespace kelvara::replay {

/// The device that a script describes, and the person's hands before it: cameras, card, chip and its reader, calls.
/// Nothing of it is stored but the public certificate of the chip's authority, in a file that goes with this object.
/// Main thread.
class ReplayDevice
{
public:
    /// A sentence if there can be no such device.
    [[nodiscard]] static std::variant<std::unique_ptr<ReplayDevice>, QString> make(const FlowScript& script);

    [[nodiscard]] PlatformServices services() const;
    [[nodiscard]] const std::shared_ptr<ReplayConference>& conference() const { return m_conference; }

    void show(const Show& shown);
    void plug(const PlugCameras& act);
    void plug(const PlugReader& act);
    void hold();
    void take();
    /// Commands that a fault counts over the chip's life are counted from now on.
    void setFaults(chip::software::ChipFaults faults);

    /// Frames that the cameras have delivered, back and front.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> deliveredFrames() const;
    /// Pictures that the view has looked at.
    [[nodiscard]] std::int64_t looks() const { return *m_looks; }

private:
    explicit ReplayDevice(const FlowScript& script);
    /// Empty when all went well.
    [[nodiscard]] QString makeChip(const FlowScript& script);
    [[nodiscard]] ReplaySource pictureOf(Picture picture, bool isFrontCamera) const;

    const std::uint32_t m_seed;
    const QSize m_view;
    const QSize m_frame;
    const bool m_hasCameras;
    const bool m_hasReader;
    const bool m_hasCalls;
    const bool m_isTold;
    const std::shared_ptr<Told> m_told = std::make_shared<Told>();
    const std::shared_ptr<std::atomic<std::int64_t>> m_looks = std::make_shared<std::atomic<std::int64_t>>(0);
    const std::shared_ptr<ReplayConference> m_conference = std::make_shared<ReplayConference>();
    const std::shared_ptr<chip::software::SoftwareTerminal> m_terminal
        = std::make_shared<chip::software::SoftwareTerminal>();
    std::shared_ptr<chip::software::SoftwareChip> m_chip;
    std::shared_ptr<ReplayCamera> m_back;
    std::shared_ptr<ReplayCamera> m_front;
    QTemporaryFile m_trusted;
};

} // namespace kelvara::replay
