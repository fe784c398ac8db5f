#pragma once

#include "Platform/Chip/software/ChipProfile.h"

#include <QImage>

#include <random>

/// Documents that reads are tried and measured on.
namespace kelvara::evaluate {

/// One issuer for all, so that not every document makes its keys.
inline const chip::software::TestAuthority& issuer()
{
    static const auto authority = *chip::software::TestAuthority::make();
    return authority;
}

/// A small and quick chip: BAC, chip authentication, a portrait of a kilobyte or two.
inline chip::software::ChipProfile plainProfile()
{
    chip::software::ChipProfile profile;
    profile.authority = issuer();
    profile.pace.clear();
    profile.portrait->picture = QImage(60, 80, QImage::Format_RGB32);
    profile.portrait->picture.fill(Qt::darkCyan);
    profile.portrait->kind = chip::ImageKind::Jpeg;
    return profile;
}

/// The same with a portrait of 300 × 400 pixels that fills some 17 kilobytes, as real ones do.
inline chip::software::ChipProfile usualProfile()
{
    chip::software::ChipProfile profile = plainProfile();
    QImage noise(300, 400, QImage::Format_RGB32);
    std::mt19937 dice(1);
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, qRgb(static_cast<int>(dice() % 256), x % 256, y % 256));
    }
    profile.portrait->picture = noise;
    profile.portrait->kind = chip::ImageKind::Jpeg2000;
    profile.portrait->quality = 47;
    profile.details.emplace();
    profile.details->personalNumber = QStringLiteral("12345678950");
    return profile;
}

} // namespace kelvara::evaluate
