// A folder's entry in the library's cache, unpacked, from arbitrary bytes: what is taken of it is written as the same
// again.
#include "FuzzFile.h"

#include "library/RememberedFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    (void)RememberedFolder::decoded(bytes);
    if (const auto folder = RememberedFolder::decoded(qCompress(bytes.toByteArray(), 1))) {
        const QByteArray written = folder->encoded();
        const auto again = RememberedFolder::decoded(written);
        require(again && again->encoded() == written); // not a comparison of fields: a length may be no number
    }
    return 0;
}
