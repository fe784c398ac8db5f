#include "Tools/Replay/SpecimenPictures.h"

#include "Demo/SpecimenCard.h"
#include "Demo/SpecimenScenes.h"

#include <map>
#include <tuple>

namespace kelvara::replay {

namespace {

constexpr qint64 kMostBytes = qint64 { 256 } << 20;
constexpr std::size_t kMostCards = 64;

QImage made(std::uint32_t seed, Picture picture, bool isFrontCamera, QSize view, QSize frame)
{
    const demo::SpecimenScenes scenes(seed, specimen::ScanAreas::of(view, frame));
    const auto plate = [&] {
        switch (picture) {
        case Picture::Front:
            return scenes.clip(demo::Subject::CardFront).plate;
        case Picture::Back:
            return scenes.clip(demo::Subject::CardBack).plate;
        case Picture::Selfie:
            return scenes.clip(demo::Subject::Selfie).plate;
        case Picture::Nothing:
            break;
        }
        return scenes.backdrop(isFrontCamera ? demo::Subject::Selfie : demo::Subject::CardFront);
    }();
    // Cameras that play 32-bit opaque pictures copy none of them.
    return plate.copy(QRect(QPoint(demo::kShakeMargin, demo::kShakeMargin), frame))
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

QImage specimenPicture(std::uint32_t seed, Picture picture, bool isFrontCamera, QSize view, QSize frame)
{
    using Key = std::tuple<std::uint32_t, Picture, bool, int, int, int, int>;
    static std::map<Key, QImage> kept;
    static qint64 bytes = 0;
    const Key key { seed, picture, isFrontCamera, view.width(), view.height(), frame.width(), frame.height() };
    if (const auto found = kept.find(key); found != kept.end())
        return found->second;
    QImage image = made(seed, picture, isFrontCamera, view, frame);
    if (bytes + image.sizeInBytes() > kMostBytes) {
        kept.clear();
        bytes = 0;
    }
    bytes += image.sizeInBytes();
    return kept.emplace(key, std::move(image)).first->second;
}

const demo::CardContents& specimenContents(std::uint32_t seed)
{
    static std::map<std::uint32_t, demo::CardContents> kept;
    if (!kept.contains(seed) && kept.size() >= kMostCards)
        kept.clear();
    const auto [place, isNew] = kept.try_emplace(seed);
    if (isNew)
        place->second = demo::specimenCard(seed);
    return place->second;
}

} // namespace kelvara::replay
