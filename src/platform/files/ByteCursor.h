// Walks through a piece of foreign bytes. Whatever lengths they declare, nothing outside the piece is touched: what
// asks for more than remains gets nothing, and the cursor stays where it is. No state elsewhere; any thread; never
// throws.
#pragma once

#include <QByteArrayView>

#include <cstddef>
#include <cstdint>
#include <optional>

enum class ByteOrder : std::uint8_t { Little, Big };

class ByteCursor {
public:
    /// `bytes` must outlive the cursor and all that it hands out.
    ByteCursor(QByteArrayView bytes, ByteOrder order)
        : m_bytes(bytes)
        , m_order(order)
    {
    }

    [[nodiscard]] std::uint64_t remaining() const { return std::uint64_t(rest().size()); }
    [[nodiscard]] std::uint64_t position() const { return std::uint64_t(m_position); }
    /// A cursor over the same bytes at `position`; at their end if that is outside.
    [[nodiscard]] ByteCursor at(std::uint64_t position) const
    {
        ByteCursor moved = *this;
        moved.m_position = position > std::uint64_t(m_bytes.size()) ? m_bytes.size() : qsizetype(position);
        return moved;
    }

    /// The next `length` bytes.
    [[nodiscard]] std::optional<QByteArrayView> take(std::uint64_t length)
    {
        if (length > remaining()) {
            return std::nullopt;
        }
        const QByteArrayView taken = rest().first(qsizetype(length));
        m_position += taken.size();
        return taken;
    }
    bool skip(std::uint64_t length) { return take(length).has_value(); }
    /// True, and behind them, if the next bytes are these.
    bool skipText(QByteArrayView text)
    {
        const bool isNext = rest().startsWith(text);
        m_position += isNext ? text.size() : 0;
        return isNext;
    }

    /// The next `length` bytes, at most eight, as a number. Of each byte `bitsPerByte` count: some formats write seven.
    [[nodiscard]] std::optional<std::uint64_t> number(std::size_t length, int bitsPerByte = 8)
    {
        const std::optional<QByteArrayView> bytes = take(length);
        if (!bytes) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const char byte = (*bytes)[qsizetype(m_order == ByteOrder::Big ? i : length - 1 - i)];
            value = value << bitsPerByte | (static_cast<unsigned char>(byte) & ((1U << bitsPerByte) - 1));
        }
        return value;
    }

private:
    [[nodiscard]] QByteArrayView rest() const { return m_bytes.sliced(m_position); }

    QByteArrayView m_bytes;
    qsizetype m_position = 0;
    ByteOrder m_order;
};
