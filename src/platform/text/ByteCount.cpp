#include "platform/text/ByteCount.h"

#include "platform/text/TextOrder.h"

#include <utility>

QString byteCount(std::int64_t bytes)
{
    constexpr std::int64_t kilo = 1'000;
    constexpr std::int64_t mega = 1'000'000;
    constexpr std::int64_t giga = 1'000 * mega;
    constexpr std::int64_t tera = 1'000 * giga;
    if (bytes < kilo) {
        return QString::number(bytes) + QStringLiteral(" B");
    }
    // What rounds to a thousand of one unit is shown as one of the next.
    for (const auto &[unit, half] :
        {std::pair(mega, kilo / 2), std::pair(giga, mega / 20), std::pair(tera, giga / 200)}) {
        if (bytes < unit && bytes >= unit - half) {
            bytes = unit;
        }
    }
    const int decimals = bytes < mega ? 0 : bytes < giga ? 1 : 2;
    return TextOrder::locale().formattedDataSize(bytes, decimals, QLocale::DataSizeSIFormat);
}
