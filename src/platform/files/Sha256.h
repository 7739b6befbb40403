// SHA-256 of bytes that come in pieces (FIPS 180-4). Not shared between threads.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <span>

class Sha256 {
public:
    using Digest = std::array<std::uint8_t, 32>;

    Sha256();
    ~Sha256();
    Sha256(const Sha256 &) = delete;
    Sha256 &operator=(const Sha256 &) = delete;

    void update(std::span<const char> bytes);
    /// The digest of all bytes so far; nothing may follow.
    [[nodiscard]] Digest finish();

private:
    struct Context;
    std::unique_ptr<Context> m_context;
};

/// The digest of these bytes in 64 lower-case hexadecimal digits.
[[nodiscard]] QString sha256Text(std::span<const char> bytes);
