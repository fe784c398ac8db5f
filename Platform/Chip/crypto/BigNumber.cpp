#include "Platform/Chip/crypto/BigNumber_p.h"
#include "Platform/Foundation/FatalError.h"

namespace kelvara::chip {

void require(bool succeeded)
{
    if (!succeeded)
        fatalError("OpenSSL could not calculate.");
}

BigNumber newBigNumber()
{
    BigNumber number(BN_new());
    require(number != nullptr);
    return number;
}

BigNumberContext newBigNumberContext()
{
    BigNumberContext context(BN_CTX_new());
    require(context != nullptr);
    return context;
}

BigNumber bigNumber(ByteView bigEndian)
{
    BigNumber number(BN_bin2bn(bigEndian.data(), static_cast<int>(bigEndian.size()), nullptr));
    require(number != nullptr);
    return number;
}

Bytes fixedBytes(const BIGNUM* number, std::size_t size)
{
    Bytes result(size);
    require(BN_bn2binpad(number, result.data(), static_cast<int>(size)) == static_cast<int>(size));
    return result;
}

Bytes shortestBytes(const BIGNUM* number)
{
    return fixedBytes(number, static_cast<std::size_t>(BN_num_bytes(number)));
}

BigNumber randomBelow(const BIGNUM* limit, const RandomSource& random)
{
    const int bits = BN_num_bits(limit);
    const auto size = static_cast<std::size_t>(BN_num_bytes(limit));
    const auto mask = static_cast<std::uint8_t>(0xFF >> ((8 - bits % 8) % 8));
    for (int attempt = 0; attempt < 256; ++attempt) { // each fits with at least even odds
        Bytes drawn = random(size);
        precondition(drawn.size() == size, "A random source gives as many bytes as it is asked for.");
        drawn[0] &= mask;
        BigNumber number = bigNumber(drawn);
        if (!BN_is_zero(number.get()) && BN_cmp(number.get(), limit) < 0)
            return number;
    }
    fatalError("The random source is not random.");
}

} // namespace kelvara::chip
