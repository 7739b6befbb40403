// Any bytes as a picture: what the conversion makes of it always fits the device.
#include "artwork/Artwork.h"

#include "FuzzFile.h"

#include "media/pictures/Images.h"
#include "platform/MarluneError.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) { });
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<ImageFacts> facts = imageFacts(bytes);
    require(!facts || (facts->width > 0 && facts->height > 0));
    require(facts || Artwork::compatibilityIssue(bytes));
    const QImage picture = decodeImage(bytes, 96);
    require(std::max(picture.width(), picture.height()) <= 96);
    try {
        const QByteArray jpeg = Artwork::baselineJPEG(bytes);
        const std::optional<ImageFacts> made = imageFacts(jpeg);
        require(facts && made && made->width == 500 && made->height == 500);
        require(!Artwork::compatibilityIssue(jpeg));
    } catch (const MarluneError &) { // no picture, too large, or too damaged
    }
    return 0;
}
