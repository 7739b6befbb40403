#include "audio/AudioInfo.h"

#include "support/FlacBytes.h"
#include "support/Testing.h"

#include <sys/stat.h>

using namespace FlacBytes;

namespace {

AudioInfo read(std::string_view bytes)
{
    const TemporaryFolder folder;
    return AudioInfo::readFLAC(folder.write("a.flac", bytes));
}

/// What is read of a file of these blocks: rate, bits, seconds, tags and picture; or why it is refused.
std::string shown(const std::string &blocks)
{
    QString text;
    const std::string refusal = messageOf([&] {
        const AudioInfo info = read("fLaC" + blocks);
        text = u"%1 %2 %3"_s.arg(info.sampleRate).arg(info.bitDepth).arg(info.duration);
        for (auto tag = info.tags.begin(); tag != info.tags.end(); ++tag) {
            text += u' ' + tag.key() + u'=' + tag.value();
        }
        text += info.picture ? u' ' + QString::fromUtf8(*info.picture) : QString();
    });
    return refusal + text.toStdString();
}

} // namespace

TEST(FlacReader, readsEachBlockAndRefusesWhatDoesNotFitTogether)
{
    const std::string whole = block(0, streamInfo(44100, 16, 441000)) + block(3, std::string(36, 's'))
        + block(4, comments({"TITLE=Światło", "ARTIST=Żaneta", "TRACKNUMBER=3/12", "DISCNUMBER=2", "DATE=2001-05-04"}))
        + block(6, picture(3, "JPEG bytes")) + block(1, std::string(20, '\0'), true);
    const std::string padding = block(1, std::string(16'000'000, '\0'));
    const std::string damaged = "Nieprawidłowe metadane FLAC.";
    const std::string info = block(0, streamInfo(1048575, 32, 1048575));
    const std::string list = comments({"a=1", "b=2"});
    const auto pictures = [](const std::vector<std::uint32_t> &types) {
        std::string blocks;
        for (std::size_t i = 0; i < types.size(); ++i) {
            blocks += block(6, picture(types[i], std::to_string(i)));
        }
        return blocks;
    };
    const std::string largest(10'000'000, 'p');
    const std::pair<std::string, std::string> rows[] = {{"", "0 0 0"}, {block(1, "").substr(0, 3), "0 0 0"},
        {block(1, "12345").substr(0, 8), damaged},
        {whole + "audio",
            "44100 16 10 ARTIST=Żaneta DATE=2001-05-04 DISCNUMBER=2 TITLE=Światło TRACKNUMBER=3/12 JPEG bytes"},
        // At most 32 million bytes of metadata.
        {padding + block(1, std::string(15'999'999, '\0'), true), "0 0 0"},
        {padding + block(1, std::string(16'000'000, '\0'), true), damaged},
        // Stream information only of its size; the last one counts.
        {block(0, std::string(33, 'x')), "0 0 0"}, {block(0, std::string(35, 'x')), "0 0 0"},
        {block(0, streamInfo(0, 16, 1000)), "0 16 0"},
        {info + block(0, streamInfo(1048575, 16, 0xFFFFFFFFF)), "1048575 16 65536.1"},
        // Comments; of lengths that lie what came before them stays.
        {block(4, comments({"title=A=B", "=x", "novalue", "empty=", "żó=1", "bad\xFF=1"})),
            "0 0 0 =x EMPTY= TITLE=A=B ŻÓ=1"},
        {block(4, comments({"\uFEFFtitle=A", "ARTIST=\uFEFFB"})), "0 0 0 ARTIST=\uFEFFB \uFEFFTITLE=A"},
        {block(4, comments({"artist=A", "ARTIST=B"})) + block(4, list), "0 0 0 A=1 ARTIST=B B=2"},
        {block(4, comments(std::vector<std::string>(9'999, "a=1"))), "0 0 0 A=1"},
        {block(4, comments(std::vector<std::string>(10'000, "a=1"))), "0 0 0"},
        {block(4, list.substr(0, list.size() - 1)), "0 0 0 A=1"}, {block(4, little(0xFFFFFFFF) + "x"), "0 0 0"},
        {block(4, little(0) + little(2) + little(3) + "a=1" + little(0xFFFFFFFF)), "0 0 0 A=1"},
        // The last front cover, otherwise the first picture, of at most 10 million bytes.
        {pictures({4, 3, 5}), "0 0 0 1"}, {pictures({4, 5}), "0 0 0 0"}, {pictures({3, 3}), "0 0 0 1"},
        {pictures({3, 4}), "0 0 0 0"}, {pictures({4}) + block(6, picture(3, largest)), "0 0 0 " + largest},
        {pictures({4}) + block(6, picture(3, largest + 'p')), "0 0 0 0"},
        // A text that is longer than the block ends it; one that is longer than the read-ahead does not.
        {block(6, big(3, 4) + big(99, 4) + big(0, 4) + std::string(16, '\0') + big(4, 4) + "data"), "0 0 0"},
        {block(6, big(3, 4) + big(0, 4) + big(99, 4) + std::string(16, '\0') + big(4, 4) + "data"), "0 0 0"},
        {block(6, big(3, 4) + big(0, 4) + big(5000, 4) + std::string(5016, '\0') + big(4, 4) + "data"), "0 0 0 data"}};
    for (const auto &[blocks, expected] : rows) {
        EXPECT_TRUE(shown(blocks) == expected) << expected.substr(0, 100) << shown(blocks).substr(0, 100);
    }
    const std::string cover = picture(3, "data");
    for (std::size_t cut = 0; cut < cover.size(); ++cut) {
        EXPECT_EQ(shown(block(6, cover.substr(0, cut))), "0 0 0") << cut;
    }
}

TEST(FlacReader, refusesWhatIsNoFlac)
{
    const TemporaryFolder folder;
    for (const std::string bytes : {"", "fLa", "fLaX"}) {
        EXPECT_EQ(messageOf([&] { (void)read(bytes); }), "Nieprawidłowy nagłówek FLAC.");
    }
    const auto zeros = folder.write("zeros.flac", "fLaC"); // empty blocks as far as the file goes
    fs::resize_file(zeros, 1'000'000'000'000);
    EXPECT_EQ(messageOf([&] { (void)AudioInfo::readFLAC(zeros); }), "Nieprawidłowe metadane FLAC.");
    ASSERT_EQ(::mkfifo((folder / "pipe.flac").c_str(), 0600), 0);
    for (const char *name : {".", "missing.flac", "pipe.flac"}) {
        EXPECT_NE(failureOf([&] { (void)AudioInfo::readFLAC(folder / name); }), "") << name;
    }
}

TEST(FlacReader, parsesNumbersAndYears)
{
    const auto readComments
        = [](const std::vector<std::string> &list) { return read("fLaC" + block(4, comments(list), true)); };
    const std::pair<std::string, std::int64_t> numbers[]
        = {{"03", 3}, {"3/12", 3}, {"/12", 12}, {"+7", 7}, {"A1", 0}, {" 3", 0}, {"3 ", 0}, {"", 0}, {"/", 0}, {"-", 0},
            {"-3", 0}, {"9223372036854775807", INT64_MAX}, {"9223372036854775808", 0}, {"٣", 0}, {"1.5", 0}};
    for (const auto &[value, number] : numbers) {
        const AudioInfo info = readComments({"TRACKNUMBER=" + value, "DISCNUMBER=" + value, "YEAR=1999-01"});
        EXPECT_EQ(std::tuple(info.trackNumber, info.discNumber), std::tuple(number, number)) << value;
        EXPECT_EQ(info.year, u"1999"_s);
    }
    EXPECT_EQ(readComments({"DATE=99", "YEAR=1999"}).year, u"99"_s);
    EXPECT_EQ(readComments({"DATE=", "YEAR=1999"}).year, QString());
}
