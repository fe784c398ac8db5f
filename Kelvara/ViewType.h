#pragma once

#include <QHashFunctions>
#include <QString>

namespace kelvara {

/// One step of a verification. The order of the cases is part of the interface: a case's ordinal is its hash.
enum class ViewType {
    idPhoto, ///< Photographs of the identity card, front then back.
    selfie, ///< A photograph of the person's face.
    nfcRead, ///< The card's chip.
    jitsi ///< A video call with a representative.
};

[[nodiscard]] inline size_t qHash(ViewType viewType, size_t seed = 0) noexcept
{
    return ::qHash(static_cast<int>(viewType), seed);
}

/// The case's name, as it stands in the enumeration. Any thread.
[[nodiscard]] inline QString description(ViewType viewType)
{
    switch (viewType) {
    case ViewType::idPhoto:
        return QStringLiteral("idPhoto");
    case ViewType::selfie:
        return QStringLiteral("selfie");
    case ViewType::nfcRead:
        return QStringLiteral("nfcRead");
    case ViewType::jitsi:
        return QStringLiteral("jitsi");
    }
    return {};
}

} // namespace kelvara
