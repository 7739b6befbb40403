#include "audio/AudioInfo.h"

#include "platform/Files.h"

#include "support/FlacBytes.h"
#include "support/Messages.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace FlacBytes;

namespace {

AudioInfo read(std::string_view bytes)
{
    const TemporaryFolder folder;
    return AudioInfo::readFLAC(folder.write("a.flac", bytes));
}

AudioInfo readComments(const std::vector<std::string> &list)
{
    return read("fLaC" + block(4, comments(list), true));
}

bool isSane(const AudioInfo &info)
{
    return info.codec == QStringLiteral("FLAC") && info.sampleRate >= 0 && info.bitDepth >= 0 && info.duration >= 0
        && info.bitrate == 0 && info.trackNumber >= 0 && info.discNumber >= 0 && info.year.size() <= 16;
}

std::string goodHead()
{
    return "fLaC" + block(0, streamInfo(44100, 16, 441000)) + block(3, std::string(36, 's'))
        + block(4, comments({"TITLE=Światło", "ARTIST=Żaneta", "TRACKNUMBER=3/12", "DISCNUMBER=2", "DATE=2001-05-04"}))
        + block(6, picture(3, "JPEG bytes")) + block(1, std::string(20, '\0'), true);
}

} // namespace

TEST(FlacReader, readsAllThatTheHeadHolds)
{
    const AudioInfo info = read(goodHead() + "audio frames");
    EXPECT_EQ(std::tuple(info.sampleRate, info.bitDepth, info.duration), std::tuple(44100, 16, 10.0));
    EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber, info.bitrate), std::tuple(3, 2, 0));
    EXPECT_EQ(info.year, QStringLiteral("2001"));
    EXPECT_EQ(info.tags.value(QStringLiteral("TITLE")), QStringLiteral("Światło"));
    EXPECT_EQ(info.picture, QByteArray("JPEG bytes"));
}

TEST(FlacReader, refusesWhatIsNoFlacOrDoesNotFitTogether)
{
    const std::string noHeader = "Nieprawidłowy nagłówek FLAC.";
    const std::string damaged = "Nieprawidłowe metadane FLAC.";
    const std::string padding = block(1, std::string(16'000'000, '\0'));
    const std::pair<std::string, std::string> rows[]
        = {{"", noHeader}, {"fLa", noHeader}, {"fLaX" + block(0, ""), noHeader}, {"fLaC", ""},
            {"fLaC" + block(1, "").substr(0, 3), ""}, {"fLaC" + block(1, "12345").substr(0, 8), damaged},
            // At most 32 million bytes of metadata.
            {"fLaC" + padding + block(1, std::string(15'999'999, '\0'), true), ""},
            {"fLaC" + padding + block(1, std::string(16'000'000, '\0'), true), damaged}};
    for (const auto &[bytes, refusal] : rows) {
        EXPECT_EQ(messageOf([&] { (void)read(bytes); }), refusal) << bytes.substr(0, 20);
    }
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.flac").c_str(), 0600), 0);
    for (const char *name : {".", "missing.flac", "pipe.flac"}) {
        EXPECT_NE(failureOf([&] { (void)AudioInfo::readFLAC(folder / name); }), "") << name;
    }
}

TEST(FlacReader, takesStreamInfoOnlyOfItsSize)
{
    const std::string body = streamInfo(44100, 24, 44100);
    const std::tuple<std::string, int, int, double> rows[] = {{body.substr(1), 0, 0, 0.0}, {body + 'x', 0, 0, 0.0},
        {streamInfo(0, 16, 1000), 0, 16, 0.0}, {streamInfo(1048575, 32, 1048575), 1048575, 32, 1.0}};
    for (const auto &[block0, rate, bits, seconds] : rows) {
        const AudioInfo info = read("fLaC" + block(0, block0) + block(4, comments({"TITLE=x"}), true));
        EXPECT_EQ(std::tuple(info.sampleRate, info.bitDepth, info.duration), std::tuple(rate, bits, seconds));
        EXPECT_EQ(info.tags.size(), 1);
    }
    const AudioInfo last = read("fLaC" + block(0, body) + block(0, streamInfo(1048575, 32, 0xFFFFFFFFF), true));
    EXPECT_NEAR(last.duration, 65536.06, 0.01);
}

TEST(FlacReader, takesCommentsApart)
{
    const std::string list = comments({"a=1", "b=2"});
    // Lists, and what is kept of them: names and values in the names' order.
    const std::pair<std::string, const char *> rows[]
        = {{comments({"title=A=B", "=x", "novalue", "empty=", "żó=1", "bad\xFF=1"}), "=x EMPTY= TITLE=A=B ŻÓ=1 "},
            {comments({"artist=A", "ARTIST=B"}), "ARTIST=B "}, {comments({}), ""},
            {comments(std::vector<std::string>(9'999, "a=1")), "A=1 "},
            {comments(std::vector<std::string>(10'000, "a=1")), ""},
            // Lengths that lie: what came before them stands.
            {list.substr(0, list.size() - 1), "A=1 "}, {little(0xFFFFFFFF) + "x", ""},
            {little(0) + little(2) + little(3) + "a=1" + little(0xFFFFFFFF), "A=1 "}};
    for (const auto &[body, kept] : rows) {
        QString shown;
        const QMap<QString, QString> tags = read("fLaC" + block(4, body, true)).tags;
        for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
            shown += tag.key() + u'=' + tag.value() + u' ';
        }
        EXPECT_EQ(shown.toStdString(), kept);
    }
    EXPECT_EQ(read("fLaC" + block(4, list) + block(4, comments({"c=1"}), true)).tags.size(), 3);
}

TEST(FlacReader, parsesNumbersAndYears)
{
    const std::pair<std::string, std::int64_t> numbers[]
        = {{"03", 3}, {"3/12", 3}, {"/12", 12}, {"+7", 7}, {"A1", 0}, {" 3", 0}, {"3 ", 0}, {"", 0}, {"/", 0}, {"-", 0},
            {"-3", 0}, {"9223372036854775807", INT64_MAX}, {"9223372036854775808", 0}, {"٣", 0}, {"1.5", 0}};
    for (const auto &[value, number] : numbers) {
        const AudioInfo info = readComments({"TRACKNUMBER=" + value, "DISCNUMBER=" + value});
        EXPECT_EQ(info.trackNumber, number) << value;
        EXPECT_EQ(info.discNumber, number) << value;
    }
    EXPECT_EQ(readComments({"DATE=99", "YEAR=1999"}).year, QStringLiteral("99"));
    EXPECT_EQ(readComments({"DATE=", "YEAR=1999"}).year, QString());
    EXPECT_EQ(readComments({"YEAR=1999-01"}).year, QStringLiteral("1999"));
}

TEST(FlacReader, choosesTheFrontCover)
{
    const std::pair<std::vector<std::uint32_t>, const char *> rows[]
        = {{{4, 3, 5}, "1"}, {{4, 5}, "0"}, {{3, 3}, "1"}, {{3, 4}, "0"}, {{0}, "0"}};
    for (const auto &[types, chosen] : rows) {
        std::string bytes = "fLaC";
        for (std::size_t i = 0; i < types.size(); ++i) {
            bytes += block(6, picture(types[i], std::to_string(i)));
        }
        EXPECT_EQ(read(bytes).picture, QByteArray(chosen));
    }
    const std::string largest(10'000'000, 'p');
    const std::string small = "fLaC" + block(6, picture(4, "small"));
    EXPECT_EQ(read(small + block(6, picture(3, largest), true)).picture->size(), 10'000'000);
    EXPECT_EQ(read(small + block(6, picture(3, largest + 'p'), true)).picture, QByteArray("small"));
    // Lengths that lie take nothing.
    const std::string good = picture(3, "data");
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        EXPECT_FALSE(read("fLaC" + block(6, good.substr(0, cut), true)).picture) << cut;
    }
}

TEST(FlacReader, survivesEveryTruncation)
{
    const std::string head = goodHead();
    int whole = 0;
    for (std::size_t size = 0; size <= head.size(); ++size) {
        const TemporaryFolder folder;
        const auto file = folder.write("a.flac", std::string_view(head).substr(0, size));
        try {
            EXPECT_TRUE(isSane(AudioInfo::readFLAC(file))) << size;
            ++whole;
        } catch (const MarluneError &) { // the usual answer
        }
    }
    EXPECT_EQ(whole, 5 * 4 + 1); // cuts in or before one of five block headers, and none
}

TEST(FlacReader, survivesEveryChangeOfOneByte)
{
    const TemporaryFolder folder;
    const std::string head = goodHead();
    const auto file = folder.write("a.flac", head);
    const Files::Descriptor descriptor(::open(file.c_str(), O_WRONLY));
    ASSERT_GE(descriptor.get(), 0);
    for (std::size_t position = 0; position < head.size(); ++position) {
        for (int change = 1; change < 256; ++change) {
            const char changed = char(head[position] ^ change);
            ASSERT_EQ(::pwrite(descriptor.get(), &changed, 1, off_t(position)), 1);
            try {
                ASSERT_TRUE(isSane(AudioInfo::readFLAC(file))) << position << " ^ " << change;
            } catch (const MarluneError &) { // the usual answer
            }
        }
        ASSERT_EQ(::pwrite(descriptor.get(), &head[position], 1, off_t(position)), 1);
    }
    EXPECT_EQ(AudioInfo::readFLAC(file).trackNumber, 3);
}
