#include "audio/AudioInfo.h"

#include "support/FlacBytes.h"
#include "support/Messages.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

MetadataItem item(const char *identifier, const char *text, CommonKey key = CommonKey::None)
{
    return {key, QString::fromLatin1(identifier), QString::fromUtf8(text), std::nullopt};
}

AudioInfo technical(std::int64_t bitDepth, std::int64_t bitrate, std::int64_t sampleRate)
{
    AudioInfo info;
    info.bitDepth = bitDepth;
    info.bitrate = bitrate;
    info.sampleRate = sampleRate;
    return info;
}

/// One second of 16-bit mono silence at 8 kHz (Microsoft RIFF, PCM).
std::string wave()
{
    const auto half = [](std::uint32_t value) { return FlacBytes::little(value).substr(0, 2); };
    const std::string format
        = half(1) + half(1) + FlacBytes::little(8000) + FlacBytes::little(16000) + half(2) + half(16);
    const std::string data(16000, '\0');
    const std::string body = "WAVEfmt " + FlacBytes::little(16) + format + "data" + FlacBytes::little(16000) + data;
    return "RIFF" + FlacBytes::little(std::uint32_t(body.size())) + body;
}

AudioInfo readFile(const std::filesystem::path &file)
{
    MediaAsset asset(file);
    return AudioInfo::read(file, asset);
}

} // namespace

TEST(AudioInfo, goesByExtensionThenByContent)
{
    const TemporaryFolder folder;
    const std::string flac = "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(96000, 24, 96000), true);
    const AudioInfo upper = readFile(folder.write("a.FLAC", flac));
    EXPECT_EQ(std::tuple(upper.codec, upper.sampleRate, upper.bitrate), std::tuple(QStringLiteral("FLAC"), 96000, 0));

    const AudioInfo pcm = readFile(folder.write("a.wav", wave()));
    EXPECT_EQ(std::tuple(pcm.codec, pcm.sampleRate, pcm.bitDepth, pcm.duration, pcm.bitrate),
        std::tuple(QStringLiteral("WAV"), 8000, 16, 1.0, 128)); // the head's 44 bytes are cut with the fraction

    const AudioInfo lying = readFile(folder.write("lying.flac", wave()));
    EXPECT_EQ(std::tuple(lying.codec, lying.sampleRate, lying.duration), std::tuple(QStringLiteral("FLAC"), 8000, 1.0));

    AudioInfo nothing;
    nothing.codec = QStringLiteral("MP3");
    EXPECT_EQ(readFile(folder.write("a.mp3", "no audio")), nothing);
    EXPECT_EQ(readFile(folder / "missing.mp3"), nothing);
    nothing.codec = QString();
    EXPECT_EQ(readFile(folder.write("noextension", "no audio")), nothing);
}

TEST(AudioInfo, takesTagItemsInTheirOrder)
{
    AudioInfo info;
    const std::optional<QByteArray> picture = applyTagItems(
        {item("TIT2", "First", CommonKey::Title), item("TIT2", "Second", CommonKey::Title),
            item("TPE1", "Artist", CommonKey::Artist), item("TALB", "", CommonKey::AlbumName), item("id3/TRCK", "7/12"),
            item("id3/TPOS", "2/3"), item("TDRC", "2004-03-01"), item("TPE2", "Various"),
            {CommonKey::Artwork, QStringLiteral("APIC"), std::nullopt, QByteArray("back")},
            {CommonKey::Artwork, QStringLiteral("APIC"), std::nullopt, QByteArray("front")}},
        info);
    EXPECT_EQ(picture, QByteArray("front"));
    EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber, info.year), std::tuple(7, 2, QStringLiteral("2004")));
    EXPECT_EQ(info.tags,
        (QMap<QString, QString> {{QStringLiteral("TITLE"), QStringLiteral("Second")},
            {QStringLiteral("ARTIST"), QStringLiteral("Artist")},
            {QStringLiteral("ALBUMARTIST"), QStringLiteral("Various")}}));

    // A disc tag that says nothing resets the disc; a track tag of that kind leaves the track alone.
    EXPECT_FALSE(
        applyTagItems({item("TRCK", "x"), item("TPOS", "x"), item("", "1999", CommonKey::CreationDate)}, info));
    EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber, info.year), std::tuple(7, 0, QStringLiteral("1999")));
    const AudioInfo before = info;
    (void)applyTagItems({{CommonKey::Title, QStringLiteral("TPOS TRCK TDRC TPE2"), std::nullopt, std::nullopt}}, info);
    EXPECT_EQ(info, before);
}

TEST(AudioInfo, labelsItsParameters)
{
    const std::pair<AudioInfo, const char *> rows[] = {
        {technical(16, 0, 44100), "16-bit / 44.1 kHz"},
        {technical(24, 900, 96000), "24-bit / 96 kHz"},
        {technical(16, 0, 0), "16-bit / Parametry nieznane"},
        {technical(0, 192, 44100), "≈ 192 kb/s · 44.1 kHz"},
        {technical(0, 320, 0), "≈ 320 kb/s · Parametry nieznane"},
        {technical(0, 0, 176400), "176.4 kHz"},
        {technical(0, 0, 11025), "11.025 kHz"},
        {technical(0, 0, 0), "Parametry nieznane"},
        {technical(-1, -1, -1), "Parametry nieznane"},
    };
    for (const auto &[info, label] : rows) {
        EXPECT_EQ(info.parameters().toStdString(), label);
    }
}

TEST(DurationLabel, cutsToSeconds)
{
    const std::pair<double, const char *> rows[]
        = {{0, "0:00"}, {-0.0, "0:00"}, {59.9, "0:59"}, {65, "1:05"}, {3599.99, "59:59"}, {3600, "1:00:00"},
            {3661, "1:01:01"}, {360000, "100:00:00"}, {-1, "—"}, {NAN, "—"}, {INFINITY, "—"}, {1e300, "—"}};
    for (const auto &[seconds, label] : rows) {
        EXPECT_EQ(durationLabel(seconds).toStdString(), label) << seconds;
    }
}

TEST(AudioInfo, survivesItsJsonForm)
{
    AudioInfo info {.codec = QStringLiteral("FLAC"),
        .sampleRate = 96000,
        .bitDepth = 24,
        .duration = 1.25,
        .bitrate = 0,
        .trackNumber = INT64_MAX,
        .discNumber = 2,
        .year = QStringLiteral("2001"),
        .tags = {{QStringLiteral("TITLE"), QStringLiteral("Ż")}},
        .picture = QByteArray("\xFF\x00\xD8", 3)};
    const QJsonObject whole = toJson(info);
    EXPECT_EQ(audioInfoFromJson(whole), info);
    for (const QString &key : whole.keys()) {
        QJsonObject part = whole;
        part.remove(key);
        EXPECT_EQ(audioInfoFromJson(part).has_value(), key == QStringLiteral("picture")) << key;
        part.insert(key, true);
        EXPECT_FALSE(audioInfoFromJson(part)) << key;
    }
    info.picture.reset();
    EXPECT_FALSE(toJson(info).contains(QStringLiteral("picture")));
}
