#include "Platform/Chip/messaging/ProtectedObjects.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/crypto/Mac.h"
#include "Platform/Chip/crypto/Padding.h"

namespace kelvara::chip {

namespace {

constexpr std::size_t checksumObjectSize = 2 + macSize;

/// Sets a view that must not be set yet.
bool take(ByteView& place, ByteView value)
{
    if (!place.empty() || value.empty())
        return false;
    place = value;
    return true;
}

bool takeApart(ByteView covered, CheckedObjects& objects)
{
    TlvReader reader(covered);
    while (const auto object = reader.next()) {
        bool taken = false;
        if (object->tag == protection::cryptogram) {
            taken = !object->value.empty() && object->value[0] == protection::paddingIndicator
                && take(objects.data, object->value.subspan(1));
        } else if (object->tag == protection::encodedCryptogram) {
            taken = take(objects.data, object->value);
        } else if (object->tag == protection::expectedLength) {
            taken = object->value.size() <= 3 && take(objects.expectedLength, object->value);
        } else if (object->tag == protection::status) {
            taken = object->value.size() == 2 && take(objects.status, object->value);
        }
        if (!taken)
            return false;
    }
    return !reader.failed();
}

} // namespace

Bytes protectedHeader(const CommandApdu& command, CipherAlgorithm cipher)
{
    return padded(Bytes { command.cla, command.ins, command.p1, command.p2 }, blockSize(cipher));
}

Bytes dataObject(const SessionKeys& keys, std::uint8_t ins, ByteView data)
{
    if (data.empty())
        return {};
    const Bytes cipherText = keys.encrypted(data);
    if (ins % 2 != 0)
        return makeTlv(protection::encodedCryptogram, cipherText);
    const std::uint8_t indicator[] = { protection::paddingIndicator };
    return makeTlv(protection::cryptogram, joined({ ByteView(indicator), cipherText }));
}

ObjectsProblem checkObjects(const SessionKeys& keys, ByteView head, ByteView message, CheckedObjects& objects)
{
    // The checksum's object closes the message and has one form: it is found from the end without parsing what is not
    // authenticated yet.
    if (message.size() < checksumObjectSize)
        return ObjectsProblem::BadChecksum;
    const ByteView covered = message.first(message.size() - checksumObjectSize);
    const ByteView closing = message.last(checksumObjectSize);
    if (closing[0] != protection::checksum || closing[1] != macSize
        || !equalInConstantTime(closing.subspan(2), keys.checksum(head, covered)))
        return ObjectsProblem::BadChecksum;
    return takeApart(covered, objects) ? ObjectsProblem::None : ObjectsProblem::Malformed;
}

} // namespace kelvara::chip
