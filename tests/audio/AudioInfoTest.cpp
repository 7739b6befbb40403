#include "audio/AudioInfo.h"

#include "support/FlacBytes.h"
#include "support/Testing.h"

#include <cmath>

namespace {

MetadataItem item(const char *identifier, const char *text, CommonKey key = CommonKey::None)
{
    return {key, QString::fromLatin1(identifier), QString::fromUtf8(text), std::nullopt};
}

} // namespace

TEST(AudioInfo, goesByExtensionThenByContent)
{
    const TemporaryFolder folder;
    const std::string flac = "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(96000, 24, 96000), true);
    const std::string wave = fileBytes(dataFile("media/id3.wav"));
    const std::tuple<const char *, std::string, const char *, int, double, int> rows[]
        = {{"a.FLAC", flac, "FLAC", 96000, 1, 0},
            {"a.wav", wave, "WAV", 96000, 0.05, 2540}, // 15,880 bytes, the fraction cut
            {"lying.flac", wave, "FLAC", 96000, 0.05, 2540}, {"a.mp3", "no audio", "MP3", 0, 0, 0},
            {"noextension", "no audio", "", 0, 0, 0}};
    for (const auto &[name, bytes, codec, rate, duration, bitrate] : rows) {
        const auto file = folder.write(name, bytes);
        MediaAsset asset(file);
        const AudioInfo info = AudioInfo::read(file, asset);
        EXPECT_EQ(info.codec.toStdString(), codec) << name;
        EXPECT_EQ(std::tuple(info.sampleRate, info.duration, info.bitrate), std::tuple(rate, duration, bitrate))
            << name;
    }
}

TEST(AudioInfo, takesTagItemsInTheirOrder)
{
    AudioInfo info;
    const std::optional<QByteArray> picture
        = applyTagItems({item("TIT2", "First", CommonKey::Title), item("TIT2", "Second", CommonKey::Title),
                            item("TPE1", "Artist", CommonKey::Artist), item("TALB", "", CommonKey::AlbumName),
                            item("id3/TRCK", "7/12"), item("id3/TPOS", "2/3"), item("TDRC", "2004-03-01"),
                            item("TPE2", "Various"), {CommonKey::Artwork, u"APIC"_s, std::nullopt, QByteArray("back")},
                            {CommonKey::Artwork, u"APIC"_s, std::nullopt, QByteArray("front")}},
            info);
    EXPECT_EQ(picture, QByteArray("front"));
    EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber, info.year), std::tuple(7, 2, u"2004"_s));
    EXPECT_EQ(info.tags.size(), 3);
    EXPECT_EQ(info.tags.value(u"TITLE"_s), u"Second"_s);
    EXPECT_EQ(info.tags.value(u"ALBUMARTIST"_s), u"Various"_s);

    // A disc tag that says nothing resets the disc; a track tag of that kind leaves the track alone.
    (void)applyTagItems({item("TRCK", "x"), item("TPOS", "x"), item("", "1999", CommonKey::CreationDate)}, info);
    EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber, info.year), std::tuple(7, 0, u"1999"_s));
}

TEST(AudioInfo, labelsItsParameters)
{
    const std::tuple<int, int, int, const char *> rows[]
        = {{24, 900, 96000, "24-bit / 96 kHz"}, {16, 0, 0, "16-bit / Parametry nieznane"},
            {0, 192, 44100, "≈ 192 kb/s · 44.1 kHz"}, {0, 0, 11025, "11.025 kHz"}};
    for (const auto &[bitDepth, bitrate, sampleRate, label] : rows) {
        AudioInfo info;
        info.bitDepth = bitDepth;
        info.bitrate = bitrate;
        info.sampleRate = sampleRate;
        EXPECT_EQ(info.parameters().toStdString(), label);
    }
    for (const auto &[seconds, label] :
        {std::pair(3599.99, "59:59"), std::pair(3661.0, "1:01:01"), std::pair(double(NAN), "—")}) {
        EXPECT_EQ(durationLabel(seconds).toStdString(), label) << seconds;
    }
}

TEST(AudioInfo, survivesItsJsonForm)
{
    AudioInfo info;
    info.trackNumber = INT64_MAX;
    info.duration = 1.25;
    info.tags = {{u"TITLE"_s, u"Ż"_s}};
    info.picture = QByteArray("\xFF\x00\xD8", 3);
    const QJsonObject whole = toJson(info);
    EXPECT_EQ(audioInfoFromJson(whole), info);
    for (const QString &key : whole.keys()) {
        QJsonObject part = whole;
        part[key] = true;
        EXPECT_FALSE(audioInfoFromJson(part)) << key;
    }
}
