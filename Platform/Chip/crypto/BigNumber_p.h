#pragma once

// For the sources of this folder only: public headers know nothing of OpenSSL.

#include "Platform/Chip/crypto/RandomSource.h"

#include <memory>
#include <openssl/bn.h>

namespace kelvara::chip {

struct BigNumberDeleter
{
    void operator()(BIGNUM* number) const { BN_clear_free(number); }
    void operator()(BN_CTX* context) const { BN_CTX_free(context); } // clears what it lent
};

using BigNumber = std::unique_ptr<BIGNUM, BigNumberDeleter>;
using BigNumberContext = std::unique_ptr<BN_CTX, BigNumberDeleter>;

/// All of these stop the program when memory is short: there is nothing sensible to go on with.
[[nodiscard]] BigNumber newBigNumber();
[[nodiscard]] BigNumberContext newBigNumberContext();
[[nodiscard]] BigNumber bigNumber(ByteView bigEndian);

/// Exactly `size` bytes; the number must fit.
[[nodiscard]] Bytes fixedBytes(const BIGNUM* number, std::size_t size);
/// Without leading zeros.
[[nodiscard]] Bytes shortestBytes(const BIGNUM* number);

/// From 1 to `limit` - 1, every number equally likely. Draws whole strings of the limit's size until one fits.
[[nodiscard]] BigNumber randomBelow(const BIGNUM* limit, const RandomSource& random);

/// Stops the program unless an OpenSSL call went well that can only fail for want of memory.
void require(bool succeeded);

} // namespace kelvara::chip
