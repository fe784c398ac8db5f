#pragma once

#include "ChipDriver.h"
#include "Platform/Chip/trust/PassiveAuthentication.h"

namespace kelvara::chip {

/// RSA keys take long: all tests share one.
inline const SignatureKey& rsaKey()
{
    static const SignatureKey key = *SignatureKey::generateRsa(1024);
    return key;
}

inline software::ActiveAuthenticationKey rsa(
    DigestAlgorithm digest = DigestAlgorithm::SHA256, bool hasShortTrailer = false)
{
    return { rsaKey(), 1024, {}, digest, hasShortTrailer };
}

inline software::ActiveAuthenticationKey curve(const char* name)
{
    return { {}, 0, name, DigestAlgorithm::SHA256, false };
}

inline PassiveAuthentication judge(const software::SoftwareChip& chip, const std::map<DataGroupId, Bytes>& files)
{
    const auto object = SecurityObject::parse(files.at(DataGroupId::SOD));
    if (!object)
        return {};
    const auto list = MasterList::parse(chip.authority()->certificate());
    PassiveAuthentication::Options options;
    options.authorities = &*list;
    return PassiveAuthentication::judge(*object, files, options);
}

/// Everything that a chip gives after it was opened.
inline std::map<DataGroupId, Bytes> readAll(ChipDriver& driver, const software::SoftwareChip& chip)
{
    std::map<DataGroupId, Bytes> found;
    for (const auto& [id, content] : chip.files()) {
        if (auto file = entryOf(id).inApplication ? driver.read(id) : std::nullopt)
            found[id] = std::move(*file);
    }
    return found;
}

} // namespace kelvara::chip
