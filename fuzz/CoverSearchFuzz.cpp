// Answers of the cover catalogue from arbitrary bytes: whatever they name, addresses made of it lie at the services.
#include "FuzzFile.h"

#include "artwork/CoverSearch.h"
#include "platform/MarluneError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    try {
        for (const CoverCandidate &each :
            CoverSearch::decode(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)))) {
            const QByteArray image = each.artworkURL().toEncoded();
            require(image.startsWith("https://coverartarchive.org/release-group/") && image.endsWith("/front-500"));
            require(image.count('/') == 5 && !image.contains('?') && !image.contains('#'));
            require(each.pageURL().toEncoded().startsWith("https://musicbrainz.org/release-group/"));
            const bool isCertain = each.score >= 95 && each.primaryType.value_or(QStringLiteral("Album")).size() == 5;
            require(isCertain || !each.matches(each.artist(), each.title));
            require(!each.matches(each.artist(), QString()));
            require(!CoverSearch::query(each.artist(), each.title).isEmpty());
        }
    } catch (const MarluneError &error) {
        require(!error.message().isEmpty());
    }
    return 0;
}
