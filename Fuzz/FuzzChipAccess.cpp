#include "Platform/Chip/access/ActiveAuthentication.h"
#include "Platform/Chip/access/Bac.h"
#include "Platform/Chip/access/ChipAuthentication.h"
#include "Platform/Chip/access/Pace.h"
#include "Platform/Chip/software/ChipPace.h"

#include <cstdlib>

using namespace kelvara::chip;

namespace {

/// Always the same, so that a finding can be repeated.
RandomSource unchanging()
{
    return [](std::size_t count) { return Bytes(count, 0x21); };
}

/// Cuts the input into answers, each after a byte that tells its length.
class Answers
{
public:
    explicit Answers(ByteView input) : m_rest(input) { }

    ResponseApdu next()
    {
        if (m_rest.empty())
            return { {}, 0x9000 };
        const ByteView part = first(m_rest.subspan(1), m_rest[0]);
        m_rest = m_rest.subspan(1 + part.size());
        return { bytes(part), 0x9000 };
    }

private:
    ByteView m_rest;
};

/// Whoever does not know the key opens nothing, and every conversation ends.
void converse(AccessProtocol& protocol, ByteView input)
{
    Answers answers(input);
    for (int step = 0; protocol.command(); ++step) {
        if (step > 8)
            std::abort();
        protocol.receive(answers.next());
    }
    if (protocol.takeSession())
        std::abort();
}

} // namespace

/// The first byte says who hears the rest: the parsers, or one of the protocols, terminal or chip.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const ByteView input(data + 1, size - 1);
    static const PacePassword password { 1, bytes("a password") };
    const auto selection = [](unsigned parameterId, PaceMapping mapping) {
        GroupPointer group = standardizedGroup(parameterId);
        return PaceSelection { { group->kind(), mapping, CipherAlgorithm::AES128 }, group, parameterId, false };
    };
    switch (data[0] % 7) {
    case 0: {
        const auto infos = SecurityInfos::parsed(input);
        if (!infos)
            break;
        (void)paceSelections(*infos);
        if (auto choice = chooseChipAuthentication(*infos))
            (void)ChipAuthentication(std::move(*choice), unchanging()).command();
        break;
    }
    case 1:
        (void)SecurityInfos::fromCardSecurity(input);
        break;
    case 2: {
        ActiveAuthentication authentication(input, std::nullopt, 256, unchanging());
        authentication.receive({ Bytes(128, 0x11), 0x9000 });
        break;
    }
    case 3: {
        const auto mapping = static_cast<PaceMapping>(data[0] / 7 % 3);
        Pace pace(selection(12, mapping), password, unchanging());
        converse(pace, input);
        break;
    }
    case 4: {
        Bac bac(*MrzKey::fromFields("L898902C", "690806", "940623"), unchanging());
        converse(bac, input);
        break;
    }
    case 5: {
        SecureMessaging messaging(SessionKeys::derived(CipherAlgorithm::AES128, Bytes(16, 1)));
        (void)messaging.protect({ 0, 0xB0, 0, 0, {}, 16 });
        if (std::holds_alternative<ResponseApdu>(messaging.unprotect({ bytes(input), 0x9000 })))
            std::abort();
        break;
    }
    default: {
        ChipPace chip({ selection(12, PaceMapping::Generic) }, { password }, {}, unchanging());
        Answers commands(input);
        for (int step = 0; step < 6; ++step) {
            if (const auto command = CommandApdu::decoded(commands.next().data))
                (void)chip.answer(*command);
        }
        if (chip.takeSession())
            std::abort();
    }
    }
    return 0;
}
