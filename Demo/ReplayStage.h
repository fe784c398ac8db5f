#pragma once

#include "Demo/CardContents.h"
#include "Demo/CardMovie.h"
#include "Demo/DemoOptions.h"
#include "Demo/HeldChip.h"
#include "Demo/PictureAnalysis.h"
#include "Demo/PictureSource.h"
#include "Demo/Stage.h"
#include "Platform/Capture/ReplayCamera.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QTransform>

#include <array>
#include <memory>
#include <optional>

namespace kelvara::demo {

/// Two replay cameras and what is held before them: specimens, or the pictures that the options name. The card's chip
/// is made of what the card shows.
class ReplayStage final : public Stage
{
public:
    ReplayStage(const DemoOptions& options, specimen::ScanAreas areas, PictureAnalysis analysis);

    /// Reads the given pictures and takes the specimens'. One sentence if that cannot be done.
    [[nodiscard]] std::optional<QString> open();

    [[nodiscard]] std::shared_ptr<AVCaptureDevice> backCamera() const { return m_back; }
    [[nodiscard]] std::shared_ptr<AVCaptureDevice> frontCamera() const { return m_front; }

    /// The chip of the card; null if its zone cannot be read.
    [[nodiscard]] const HeldChip* chip() const { return m_chip.get(); }

    void present(Subject subject) override;
    void photographed(Subject subject) override;
    [[nodiscard]] bool settled() const override;
    void holdToReader() override;
    void takeFromReader() override;

private:
    [[nodiscard]] std::optional<QString> openPictures();
    /// The picture's clip, laid so that the subject lies in its cut-out.
    [[nodiscard]] MovieClip fitted(Subject subject);
    void makeChip();
    /// What the card before the camera says; absent if its zone cannot be read.
    [[nodiscard]] std::optional<CardContents> contents() const;

    const std::uint32_t m_seed;
    const bool m_losesCard;
    const std::array<QString, 3> m_paths; ///< By subject; empty: a specimen.
    const specimen::ScanAreas m_areas;
    const PictureAnalysis m_analysis;
    std::array<std::shared_ptr<PictureSource>, 3> m_sources;
    std::array<QTransform, 3> m_fits; ///< How the sources' first pictures lie in the frame.
    std::array<std::shared_ptr<const MovieClip>, 3> m_clips;
    std::unique_ptr<HeldChip> m_chip;
    std::shared_ptr<CardMovie> m_tableMovie; ///< These two are null once theirs is photographed.
    std::shared_ptr<CardMovie> m_roomMovie;
    std::shared_ptr<ReplayCamera> m_back;
    std::shared_ptr<ReplayCamera> m_front;
};

} // namespace kelvara::demo
