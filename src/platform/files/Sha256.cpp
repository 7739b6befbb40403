#include "platform/files/Sha256.h"

#include "platform/MarluneError.h"

#include <openssl/evp.h>

struct Sha256::Context {
    EVP_MD_CTX *evp = EVP_MD_CTX_new();

    Context() = default;
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
    ~Context() { EVP_MD_CTX_free(evp); }
};

namespace {

void require(bool done)
{
    if (!done) {
        throw MarluneError(QStringLiteral("Nie można obliczyć sumy SHA-256."));
    }
}

} // namespace

Sha256::Sha256()
    : m_context(std::make_unique<Context>())
{
    require(m_context->evp != nullptr && EVP_DigestInit_ex(m_context->evp, EVP_sha256(), nullptr) == 1);
}

Sha256::~Sha256() = default;

void Sha256::update(std::span<const char> bytes)
{
    require(EVP_DigestUpdate(m_context->evp, bytes.data(), bytes.size()) == 1);
}

Sha256::Digest Sha256::finish()
{
    Digest digest {};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(m_context->evp, digest.data(), &length) == 1 && length == digest.size());
    return digest;
}

QString sha256Text(std::span<const char> bytes)
{
    Sha256 hash;
    hash.update(bytes);
    const Sha256::Digest digest = hash.finish();
    const auto raw = QByteArray::fromRawData(reinterpret_cast<const char *>(digest.data()), qsizetype(digest.size()));
    return QString::fromLatin1(raw.toHex());
}
