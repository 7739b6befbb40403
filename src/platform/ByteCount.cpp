#include "platform/ByteCount.h"

#include "platform/TextOrder.h"

QString byteCount(std::int64_t bytes)
{
    constexpr std::int64_t kilo = 1'000;
    constexpr std::int64_t mega = 1'000'000;
    constexpr std::int64_t giga = 1'000 * mega;
    if (bytes < kilo) {
        return QString::number(bytes) + QStringLiteral(" B");
    }
    const int decimals = bytes < mega ? 0 : bytes < giga ? 1 : 2;
    return TextOrder::locale().formattedDataSize(bytes, decimals, QLocale::DataSizeSIFormat);
}
