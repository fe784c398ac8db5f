#include "Platform/Chip/crypto/BlockCipher.h"

#include "Platform/Foundation/FatalError.h"

#include <memory>
#include <openssl/evp.h>

namespace kelvara::chip {

namespace {

const EVP_CIPHER* method(CipherAlgorithm algorithm)
{
    switch (algorithm) {
    case CipherAlgorithm::TripleDES:
        return EVP_des_ede_cbc();
    case CipherAlgorithm::AES128:
        return EVP_aes_128_cbc();
    case CipherAlgorithm::AES192:
        return EVP_aes_192_cbc();
    case CipherAlgorithm::AES256:
        return EVP_aes_256_cbc();
    }
    fatalError("A block cipher that does not exist was asked for.");
}

Bytes run(CipherAlgorithm algorithm, ByteView key, ByteView initialVector, ByteView text, bool encrypts)
{
    const std::size_t size = blockSize(algorithm);
    precondition(key.size() == keySize(algorithm), "A cipher's key has its own size.");
    precondition(initialVector.empty() || initialVector.size() == size, "An initial vector is one block.");
    const Bytes vector = initialVector.empty() ? Bytes(size, 0) : bytes(initialVector);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(
        EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    Bytes result(text.size() + size);
    int written = 0;
    if (!context
        || EVP_CipherInit_ex(context.get(), method(algorithm), nullptr, key.data(), vector.data(), encrypts ? 1 : 0)
            != 1
        || EVP_CIPHER_CTX_set_padding(context.get(), 0) != 1
        || EVP_CipherUpdate(context.get(), result.data(), &written, text.data(), static_cast<int>(text.size())) != 1)
        fatalError("OpenSSL has no block ciphers.");
    precondition(static_cast<std::size_t>(written) == text.size(), "Without padding, as much comes out as went in.");
    result.resize(text.size());
    return result;
}

} // namespace

std::size_t keySize(CipherAlgorithm algorithm)
{
    return static_cast<std::size_t>(EVP_CIPHER_get_key_length(method(algorithm)));
}

std::size_t blockSize(CipherAlgorithm algorithm)
{
    return static_cast<std::size_t>(EVP_CIPHER_get_block_size(method(algorithm)));
}

Bytes encryptCBC(CipherAlgorithm algorithm, ByteView key, ByteView initialVector, ByteView message)
{
    precondition(message.size() % blockSize(algorithm) == 0, "Only whole blocks are encrypted.");
    return message.empty() ? Bytes {} : run(algorithm, key, initialVector, message, true);
}

std::optional<Bytes> decryptCBC(CipherAlgorithm algorithm, ByteView key, ByteView initialVector, ByteView cipherText)
{
    if (cipherText.size() % blockSize(algorithm) != 0)
        return std::nullopt;
    return cipherText.empty() ? Bytes {} : run(algorithm, key, initialVector, cipherText, false);
}

Bytes encryptBlock(CipherAlgorithm algorithm, ByteView key, ByteView block)
{
    precondition(block.size() == blockSize(algorithm), "A block has the cipher's block size.");
    return encryptCBC(algorithm, key, {}, block); // the first block of a chain that begins with zeros
}

} // namespace kelvara::chip
