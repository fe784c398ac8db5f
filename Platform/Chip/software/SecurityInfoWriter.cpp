#include "Platform/Chip/software/SecurityInfoWriter.h"

#include "Platform/Chip/Tlv.h"

namespace kelvara::chip {

namespace {

constexpr Tag integerTag = 0x02, bitStringTag = 0x03, oidTag = 0x06, sequenceTag = 0x30, setTag = 0x31;

Bytes joinedAll(Bytes beginning, const std::vector<Bytes>& parts)
{
    for (const Bytes& part : parts)
        beginning.insert(beginning.end(), part.begin(), part.end());
    return beginning;
}

} // namespace

Bytes securityInfo(ByteView identifier, const std::vector<Bytes>& fields)
{
    return makeTlv(sequenceTag, joinedAll(makeTlv(oidTag, identifier), fields));
}

Bytes securityInfos(const std::vector<Bytes>& infos)
{
    return makeTlv(setTag, joinedAll({}, infos));
}

Bytes standardizedAlgorithm(unsigned parameterId)
{
    const std::uint8_t identifier[] = { 0x04, 0x00, 0x7F, 0x00, 0x07, 0x01, 0x02 };
    return makeTlv(
        sequenceTag, joined({ makeTlv(oidTag, ByteView(identifier)), makeTlv(integerTag, bigEndian(parameterId)) }));
}

Bytes publicKeyInfo(ByteView algorithm, ByteView publicKey)
{
    const std::uint8_t noUnusedBits[] = { 0 };
    return makeTlv(
        sequenceTag, joined({ algorithm, makeTlv(bitStringTag, joined({ ByteView(noUnusedBits), publicKey })) }));
}

} // namespace kelvara::chip
