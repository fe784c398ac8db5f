#include "Platform/Chip/trust/PassiveAuthentication.h"

#include <cstdlib>

using namespace kelvara::chip;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// What holds of every security object, whoever made it.
void check(const SecurityObject& object, ByteView file)
{
    require(object.raw == bytes(file) && !object.hashes.empty());
    for (const auto& [id, hash] : object.hashes)
        require(isDataGroup(id) && hash.size() == digestSize(object.digestAlgorithm));
    require(object.signedData.signature != SignatureOutcome::Valid || !object.signedData.signer.empty());
    const MasterList nobody;
    PassiveAuthentication::Options options;
    options.authorities = &nobody;
    const auto result = PassiveAuthentication::judge(object, { { DataGroupId::DG1, Bytes(3) } }, options);
    require(!result.isGenuine() && result.signer == SignerTrust::NotTrusted);
    require(result.hashes.contains(DataGroupId::DG1));
}

} // namespace

/// The first byte says whether the rest is a security object or a master list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const ByteView file(data + 1, size - 1);
    if (data[0] & 1U) {
        if (const auto list = MasterList::parse(file))
            require(list->count() > 0 && !list->hasIssued(file));
    } else if (const auto object = SecurityObject::parse(file)) {
        check(*object, file);
    }
    return 0;
}
