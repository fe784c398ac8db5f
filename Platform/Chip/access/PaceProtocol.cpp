#include "Platform/Chip/access/PaceProtocol.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

using Kind = KeyAgreementGroup::Kind;

struct MappingArc
{
    std::uint8_t arc;
    Kind agreement;
    PaceMapping mapping;
};

constexpr std::array mappingArcs {
    MappingArc { 1, Kind::DH, PaceMapping::Generic },
    MappingArc { 2, Kind::ECDH, PaceMapping::Generic },
    MappingArc { 3, Kind::DH, PaceMapping::Integrated },
    MappingArc { 4, Kind::ECDH, PaceMapping::Integrated },
    MappingArc { 6, Kind::ECDH, PaceMapping::ChipAuthentication },
};

constexpr std::uint8_t paceArc = 4;

} // namespace

std::optional<CipherAlgorithm> cipherFromArc(std::uint8_t arc)
{
    if (arc < 1 || arc > 4)
        return std::nullopt;
    return static_cast<CipherAlgorithm>(arc - 1);
}

std::uint8_t arcOf(CipherAlgorithm cipher)
{
    return static_cast<std::uint8_t>(static_cast<int>(cipher) + 1);
}

std::optional<PaceProtocol> paceMappingFromArc(std::uint8_t arc)
{
    const auto found = std::find_if(
        mappingArcs.begin(), mappingArcs.end(), [arc](const MappingArc& known) { return known.arc == arc; });
    if (found == mappingArcs.end())
        return std::nullopt;
    return PaceProtocol { found->agreement, found->mapping, CipherAlgorithm::TripleDES };
}

Bytes smartcardIdentifier(std::initializer_list<std::uint8_t> arcs)
{
    const std::uint8_t root[] = { 0x04, 0x00, 0x7F, 0x00, 0x07, 0x02, 0x02 };
    return joined({ ByteView(root), ByteView(arcs.begin(), arcs.size()) });
}

Bytes PaceProtocol::identifier() const
{
    std::uint8_t arc = 0;
    for (const MappingArc& known : mappingArcs) {
        if (known.agreement == agreement && known.mapping == mapping)
            arc = known.arc;
    }
    return smartcardIdentifier({ paceArc, arc, arcOf(cipher) });
}

std::optional<PaceProtocol> PaceProtocol::fromIdentifier(ByteView contents)
{
    const Bytes root = smartcardIdentifier({ paceArc });
    if (contents.size() != root.size() + 2 || !std::equal(root.begin(), root.end(), contents.begin()))
        return std::nullopt;
    auto protocol = paceMappingFromArc(contents[root.size()]);
    const auto cipher = cipherFromArc(contents[root.size() + 1]);
    if (!protocol || !cipher)
        return std::nullopt;
    protocol->cipher = *cipher;
    if (protocol->mapping == PaceMapping::ChipAuthentication && *cipher == CipherAlgorithm::TripleDES)
        return std::nullopt; // that mapping exists with AES only
    return protocol;
}

} // namespace kelvara::chip
