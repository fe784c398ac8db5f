#pragma once

#include "Platform/Chip/Tlv.h"

namespace kelvara::chip {

/// A curve that is spelled out instead of named, as documents must do it.
struct ExplicitCurve
{
    const char* p;
    const char* a;
    const char* b;
    const char* generator;
    const char* order;
};

inline constexpr ExplicitCurve brainpoolP256r1 {
    .p = "A9FB57DBA1EEA9BC3E660A909D838D726E3BF623D52620282013481D1F6E5377",
    .a = "7D5A0975FC2C3057EEF67530417AFFE7FB8055C126DC5C6CE94A4B44F330B5D9",
    .b = "26DC5C6CE94A4B44F330B5D9BBD77CBF958416295CF7E1CE6BCCDC18FF8C07B6",
    .generator = "048BD2AEB9CB7E57CB2C4B482FFC81B7AFB9DE27E1E3BD23C23A4453BD9ACE3262"
                 "547EF835C3DAC4FD97F8461A14611DC9C27745132DED8E545C1D54C72F046997",
    .order = "A9FB57DBA1EEA9BC3E660A909D838D718C397AA3B561A6F7901E0E82974856A7",
};

/// France's curve, which OpenSSL has no name for.
inline constexpr ExplicitCurve frp256v1 {
    .p = "F1FD178C0B3AD58F10126DE8CE42435B3961ADBCABC8CA6DE8FCF353D86E9C03",
    .a = "F1FD178C0B3AD58F10126DE8CE42435B3961ADBCABC8CA6DE8FCF353D86E9C00",
    .b = "EE353FCA5428A9300D4ABA754A44C00FDFEC0C9AE4B1A1803075ED967B7BB73F",
    .generator = "04B6B3D4C356C139EB31183D4749D423958C27D2DCAF98B70164C97A2DD98F5CFF"
                 "6142E0F7C8B204911F9271F0F3ECEF8C2701C307E8E4C9E183115A1554062CFB",
    .order = "F1FD178C0B3AD58F10126DE8CE42435B53DC67E140D2BF941FFDD459C6D655E1",
};

/// ECParameters of RFC 3279: version 1, prime field, a and b, generator, order, cofactor 1.
inline Bytes explicitParameters(const ExplicitCurve& curve)
{
    const Bytes zero(1, 0);
    const auto number = [&zero](const char* digits) { return makeTlv(0x02, joined({ zero, *fromHex(digits) })); };
    const auto string = [](const char* digits) { return makeTlv(0x04, *fromHex(digits)); };
    const Bytes one = *fromHex("020101");
    const Bytes field = makeTlv(0x30, joined({ *fromHex("06072A8648CE3D0101"), number(curve.p) }));
    return makeTlv(0x30,
        joined({ one, field, makeTlv(0x30, joined({ string(curve.a), string(curve.b) })), string(curve.generator),
            number(curve.order), one }));
}

/// The AlgorithmIdentifier of such a key.
inline Bytes explicitAlgorithm(const ExplicitCurve& curve)
{
    return makeTlv(0x30, joined({ *fromHex("06072A8648CE3D0201"), explicitParameters(curve) }));
}

} // namespace kelvara::chip
