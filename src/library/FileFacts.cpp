#include "library/FileFacts.h"

#include "platform/files/Files.h"

#include <utility>

FileFacts FileFacts::read(const std::filesystem::path &file)
{
    MediaAsset asset(file);
    FileFacts facts {.info = AudioInfo::read(file, asset), .picture = {}};
    const bool isFlac = Files::extension(file).compare(QLatin1String("flac"), Qt::CaseInsensitive) == 0;
    facts.picture = isFlac ? std::nullopt : applyTagItems(asset.metadata(), facts.info);
    facts.hasFlacPicture = facts.info.picture.has_value();
    if (!facts.picture) {
        facts.picture = std::exchange(facts.info.picture, std::nullopt);
    }
    return facts;
}
