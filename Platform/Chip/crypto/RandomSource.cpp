#include "Platform/Chip/crypto/RandomSource.h"

#include "Platform/Foundation/FatalError.h"

#include <openssl/rand.h>

namespace kelvara::chip {

RandomSource secureRandom()
{
    return [](std::size_t count) {
        Bytes result(count);
        if (count > 0 && RAND_priv_bytes(result.data(), static_cast<int>(count)) != 1)
            fatalError("The platform has no random numbers."); // going on would give the keys away
        return result;
    };
}

} // namespace kelvara::chip
