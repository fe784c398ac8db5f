#include "Platform/Chip/crypto/Mac.h"

#include "Platform/Chip/crypto/Padding.h"
#include "Platform/Foundation/FatalError.h"

#include <openssl/evp.h>
#include <string>

namespace kelvara::chip {

namespace {

constexpr std::size_t desBlock = 8;

Bytes retailMac(ByteView key, ByteView message)
{
    const Bytes blocks = padded(message, desBlock);
    const ByteView all(blocks);
    // Single DES is not among OpenSSL's default ciphers, but triple DES with one key thrice is single DES.
    const Bytes single = joined({ key.first(desBlock), key.first(desBlock) });
    const ByteView head = all.first(all.size() - desBlock);
    Bytes chain(desBlock, 0);
    if (!head.empty())
        chain = bytes(ByteView(encryptCBC(CipherAlgorithm::TripleDES, single, {}, head)).last(desBlock));
    // The last block's DES, its decryption with the second key and encryption with the first are one triple DES.
    return encryptCBC(CipherAlgorithm::TripleDES, key, chain, all.last(desBlock));
}

Bytes shortCmac(CipherAlgorithm algorithm, ByteView key, ByteView message)
{
    const std::string cipher = "AES-" + std::to_string(8 * keySize(algorithm)) + "-CBC";
    Bytes result(blockSize(algorithm));
    std::size_t size = 0;
    if (EVP_Q_mac(nullptr, "CMAC", nullptr, cipher.c_str(), nullptr, key.data(), key.size(), message.data(),
            message.size(), result.data(), result.size(), &size)
            == nullptr
        || size != result.size())
        fatalError("OpenSSL has no CMAC.");
    result.resize(macSize);
    return result;
}

} // namespace

Bytes messageAuthenticationCode(CipherAlgorithm algorithm, ByteView key, ByteView message)
{
    precondition(key.size() == keySize(algorithm), "A cipher's key has its own size.");
    return algorithm == CipherAlgorithm::TripleDES ? retailMac(key, message) : shortCmac(algorithm, key, message);
}

} // namespace kelvara::chip
