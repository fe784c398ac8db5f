#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/Pace.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"

#include <eac/eac.h>
#include <eac/pace.h>
#include <gtest/gtest.h>
#include <memory>

// PACE against a chip whose side an independent implementation (OpenPACE's libeac) calculates: what both sides here
// would get wrong alike shows.

namespace kelvara::chip {
namespace {

struct Freed
{
    void operator()(EAC_CTX* context) const { EAC_CTX_clear_free(context); }
    void operator()(PACE_SEC* secret) const { PACE_SEC_clear_free(secret); }
    void operator()(BUF_MEM* buffer) const { BUF_MEM_free(buffer); }
};
using Context = std::unique_ptr<EAC_CTX, Freed>;
using Secret = std::unique_ptr<PACE_SEC, Freed>;
using Buffer = std::unique_ptr<BUF_MEM, Freed>;

Bytes bytesOf(const BUF_MEM* buffer)
{
    return buffer ? bytes(ByteView(reinterpret_cast<const std::uint8_t*>(buffer->data), buffer->length)) : Bytes();
}

Buffer bufferOf(ByteView view)
{
    Buffer buffer(BUF_MEM_new());
    BUF_MEM_grow(buffer.get(), view.size());
    std::copy(view.begin(), view.end(), reinterpret_cast<std::uint8_t*>(buffer->data));
    return buffer;
}

/// A chip with one way of PACE and a card access number.
class PeerChip
{
public:
    PeerChip(ByteView cardAccess, const std::string& number)
        : m_context(EAC_CTX_new()), m_secret(PACE_SEC_new(number.data(), number.size(), PACE_CAN))
    {
        isReady = EAC_CTX_init_ef_cardaccess(cardAccess.data(), cardAccess.size(), m_context.get()) == 1;
        m_context->tr_version = EAC_TR_VERSION_2_02;
    }
    ResponseApdu answer(const CommandApdu& command)
    {
        constexpr ResponseApdu refused { {}, 0x6300 };
        if (command.ins == 0x22)
            return { {}, 0x9000 };
        if (const auto value = pace::unwrapped(command.data, pace::terminalMapping)) {
            const Buffer own(PACE_STEP3A_generate_mapping_data(m_context.get()));
            if (!own || PACE_STEP3A_map_generator(m_context.get(), bufferOf(*value).get()) != 1)
                return refused;
            return { pace::wrapped(pace::chipMapping, bytesOf(own.get())), 0x9000 };
        }
        if (const auto value = pace::unwrapped(command.data, pace::terminalKey)) {
            const Buffer own(PACE_STEP3B_generate_ephemeral_key(m_context.get()));
            m_terminalKey = bufferOf(*value);
            if (!own || PACE_STEP3B_compute_shared_secret(m_context.get(), m_terminalKey.get()) != 1
                || PACE_STEP3C_derive_keys(m_context.get()) != 1)
                return refused;
            return { pace::wrapped(pace::chipKey, bytesOf(own.get())), 0x9000 };
        }
        if (const auto value = pace::unwrapped(command.data, pace::terminalToken)) {
            const Buffer own(PACE_STEP3D_compute_authentication_token(m_context.get(), m_terminalKey.get()));
            if (!own || PACE_STEP3D_verify_authentication_token(m_context.get(), bufferOf(*value).get()) != 1)
                return refused;
            return { pace::wrapped(pace::chipToken, bytesOf(own.get())), 0x9000 };
        }
        const Buffer nonce(PACE_STEP1_enc_nonce(m_context.get(), m_secret.get()));
        return { pace::wrapped(pace::encryptedNonce, bytesOf(nonce.get())), 0x9000 };
    }
    bool isReady = false;

private:
    Context m_context;
    Secret m_secret;
    Buffer m_terminalKey;
};

TEST(PacePeer, GenericMappingAgreesWithAnIndependentChip)
{
    EAC_init();
    const std::string number = "123456";
    int runs = 0;
    for (const unsigned id : { 8U, 9U, 10U, 11U, 12U, 13U, 14U, 15U, 16U, 17U, 18U }) {
        for (int cipher = 0; cipher < 4; ++cipher) {
            SCOPED_TRACE(testing::Message() << "group " << id << ", cipher " << cipher);
            const PaceProtocol protocol { KeyAgreementGroup::Kind::ECDH, PaceMapping::Generic,
                static_cast<CipherAlgorithm>(cipher) };
            const Bytes two = makeTlv(0x02, bigEndian(2));
            const Bytes offer
                = securityInfos({ securityInfo(protocol.identifier(), { two, makeTlv(0x02, bigEndian(id)) }) });
            PeerChip chip(offer, number);
            ASSERT_TRUE(chip.isReady) << "it does not understand what our chips announce";
            const auto infos = SecurityInfos::parsed(offer);
            const auto selection = infos ? choosePace(*infos) : std::nullopt;
            ASSERT_TRUE(selection);
            for (const bool isRight : { true, false }) {
                PeerChip fresh(offer, number);
                Pace pace(*selection, PacePassword::fromCan(isRight ? number : "654321"));
                while (pace.command())
                    pace.receive(fresh.answer(*pace.command()));
                EXPECT_EQ(pace.succeeded(), isRight);
                EXPECT_EQ(pace.takeSession().has_value(), isRight);
                EXPECT_TRUE(isRight || pace.failure()->error == AccessError::WrongKey);
            }
            ++runs;
        }
    }
    EXPECT_EQ(runs, 44);
}

} // namespace
} // namespace kelvara::chip
