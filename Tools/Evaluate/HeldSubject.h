#pragma once

#include "Platform/Capture/ReplayCamera.h"
#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/PlatformServices.h"
#include "Tools/Evaluate/TextScenes.h"
#include "Tools/Specimen/ScanAreas.h"

#include <vector>

namespace kelvara::evaluate {

inline constexpr QSize kView(390, 844);
inline constexpr QSize kFrame(1080, 1920);
inline constexpr double kFramesPerSecond = 30;

/// What a camera sees for a little more than a second of a card, or of a face, that is held where the view asks for it.
[[nodiscard]] inline std::vector<QImage> heldFilm(const specimen::SpecimenData& data, specimen::Subject subject)
{
    constexpr int count = 36;
    const auto areas = specimen::ScanAreas::of(kView, kFrame);
    const QRectF area = subject == specimen::Subject::Selfie ? areas.oval : areas.card;
    specimen::SceneOptions options = subject == specimen::Subject::Back
        ? nearBack(data.seed, area.size().toSize())
        : specimen::ordinary(data.seed, subject, area.size().toSize());
    if (subject == specimen::Subject::Front)
        options.fill = 0.93;
    options.shift = {};
    options.size = kFrame;
    options.frame = area;
    std::vector<QImage> frames;
    frames.reserve(count);
    for (int i = 0; i < count; ++i)
        frames.push_back(photograph(data, shaken(options, i / kFramesPerSecond)).image);
    return frames;
}

/// The film's frame at `index`, to its end and back again, so that the hand never jumps.
[[nodiscard]] inline const QImage& frameOf(const std::vector<QImage>& film, std::int64_t index)
{
    const auto count = static_cast<std::int64_t>(film.size());
    const std::int64_t place = index % (2 * count - 2);
    return film[static_cast<std::size_t>(place < count ? place : 2 * count - 2 - place)];
}

struct ContactlessReader final : NFCReaderSession
{
    [[nodiscard]] bool readingAvailable() const override { return true; }
};

/// A phone with a contactless reader whose back camera shows what the generator makes, and whose front camera a still.
[[nodiscard]] inline PlatformServices phoneSeeing(ReplaySource back, const QImage& front)
{
    ReplayCameraOptions options;
    options.position = AVCaptureDevicePosition::Front;
    PlatformServices services = PlatformServices::native();
    services.cameras = std::make_shared<ReplayCameraProvider>(std::make_shared<ReplayCamera>(std::move(back)),
        std::make_shared<ReplayCamera>(ReplaySource::still(front), options));
    services.nfc = std::make_shared<ContactlessReader>();
    services.userDefaults = nullptr;
    return services;
}

} // namespace kelvara::evaluate
