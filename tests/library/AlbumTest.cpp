#include "library/Album.h"

#include "support/Messages.h"
#include "support/SampleTracks.h"

#include <QBuffer>

#include <gtest/gtest.h>

TEST(Album, showsTheFirstArtworkOrNoneAndHasAnIdentity)
{
    const QImage image(400, 200, QImage::Format_RGB32);
    QBuffer png;
    ASSERT_TRUE(png.open(QIODevice::WriteOnly) && image.save(&png, "PNG"));
    Album album {.artist = QStringLiteral("A"), .title = QStringLiteral("T"), .tracks = {}, .groupID = {}};
    album.tracks = makeTracks({{"a.mp3"}, {"b.mp3"}, {"c.mp3"}});
    EXPECT_EQ(album.id().replace(QChar(u'\0'), u'|'), QStringLiteral("A|T|/music"));
    EXPECT_TRUE(album.artwork(100).isNull());
    album.tracks[2].artwork = png.data();
    EXPECT_EQ(album.artwork(100).size(), QSize(100, 50));
    EXPECT_EQ(album.artwork(1000).size(), QSize(400, 200));
    album.tracks[1].artwork = "no picture";
    EXPECT_TRUE(album.artwork(100).isNull());
}
