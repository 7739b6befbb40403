// Reads the files of tests/data/media (made by make_media.py) and files built here byte by byte.
#include "platform/MediaAsset.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <thread>

namespace {

using namespace std::string_literals;

const std::filesystem::path media = std::filesystem::path(MARLUNE_SOURCE_DIR) / "tests/data/media";

/// What a reader of the items ends up with: the last value of each identifier, texts in UTF-8.
std::map<std::string, std::string> shownValues(const std::vector<MetadataItem> &items)
{
    std::map<std::string, std::string> shown;
    for (const MetadataItem &item : items) {
        const std::string value = item.data ? item.data->toStdString() : item.text.value_or(QString()).toStdString();
        shown[item.identifier.toStdString()] = value;
    }
    return shown;
}

std::map<std::string, std::string> shownValues(const std::filesystem::path &file)
{
    return shownValues(MediaAsset(file).metadata());
}

/// Asks for everything; returns whether each answer is one that a caller can work with.
bool answersSensibly(const std::filesystem::path &file)
{
    MediaAsset asset(file);
    const std::optional<double> seconds = asset.durationSeconds();
    const std::optional<AudioStream> stream = asset.firstAudioStream();
    const std::vector<MetadataItem> items = asset.metadata();
    return (!seconds || (*seconds > 0 && *seconds <= 100e6))
        && (!stream || (stream->sampleRate > 0 && stream->sampleRate <= 100e6))
        && std::all_of(items.begin(), items.end(), [](const MetadataItem &item) {
               return item.text.has_value() != item.data.has_value()
                   && (!item.data || (!item.data->isEmpty() && item.data->size() <= 10'000'000));
           });
}

// Tags

using Values = std::map<std::string, std::string>;

Values allFields(const Values &different, const std::string &picture = fileBytes(media / "front.png"))
{
    Values fields {{"TIT2", "Gęślą jaźń"}, {"TPE1", "Zażółć, Druga"}, {"TALB", "Jesień"}, {"TPE2", "Różni wykonawcy"},
        {"TRCK", "7/12"}, {"TPOS", "2/3"}, {"TDRC", "2004-03-01"}, {"APIC", picture}};
    for (const auto &[identifier, value] : different) {
        fields[identifier] = value;
    }
    return fields;
}

struct Sample {
    const char *name;
    double seconds;
    AudioStream stream;
    Values fields;
};

std::vector<Sample> samples()
{
    const Values comments = allFields({{"TRCK", "7"}, {"TPOS", "2"}});
    const Values ape = allFields({{"TPOS", "2"}});
    const Values info {{"TIT2", "Gęślą jaźń"}, {"TPE1", "Zażółć"}, {"TALB", "Jesień"}, {"TRCK", "7"}, {"TDRC", "2004"}};
    return {
        {"id3v24.mp3", 0.549, {44100}, allFields({})},
        {"id3v23.mp3", 0.575, {22050}, allFields({{"TPE1", "Zażółć"}, {"TDRC", "2004"}})},
        {"three-tags.mp3", 0.549, {44100}, allFields({{"TIT2", "Z ID3v2"}, {"TPOS", "2"}})},
        {"variable-rate.mp3", 4.075, {22050}, {}},
        {"aac.m4a", 0.523, {44100, AudioFormat::mpeg4Aac}, allFields({{"TPOS", "2"}})},
        {"alac16.m4a", 0.5, {8000, AudioFormat::appleLossless, 1, 16}, {}},
        {"alac24.alac", 0.05, {96000, AudioFormat::appleLossless, 3, 24}, {}},
        {"fragmented.m4a", 0.5, {8000, AudioFormat::appleLossless, 1, 16}, {}},
        {"raw.aac", 4.087, {22050, AudioFormat::mpeg4Aac}, allFields({{"TPE1", "Zażółć"}})},
        {"vorbis.ogg", 0.5, {44100}, comments},
        {"opus.opus", 0.5, {48000}, comments},
        {"flac.ogg", 0.5, {8000, 0, 0, 16}, comments},
        {"matroska.opus", 0.508, {48000}, {{"TIT2", "Gęślą jaźń"}, {"TPE1", "Zażółć"}, {"TRCK", "7"}}},
        {"info.wav", 0.5, {8000, 0, 0, 16}, info},
        {"unfinished.wav", 0.5, {8000, 0, 0, 16}, info},
        {"id3.wav", 0.05, {96000, 0, 0, 24}, allFields({{"TPE1", "Zażółć"}})},
        {"mu-law.wav", 0.5, {8000}, {}},
        {"id3.aiff", 0.5, {8000, 0, 0, 16}, allFields({{"TPE1", "Zażółć"}})},
        {"swapped.aif", 0.5, {8000, 0, 0, 16}, {}},
        {"lossless.wv", 0.5, {8000, 0, 0, 16}, ape},
        {"lossy.wv", 0.5, {44100}, {}},
        {"musepack.mpc", 0.5, {44100}, ape},
        {"monkeys.ape", 1.5, {44100, 0, 0, 16}, ape},
    };
}

TEST(MediaAsset, ReadsLengthStreamAndTagsOfEveryFormat)
{
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        MediaAsset asset(media / sample.name);
        EXPECT_NEAR(asset.durationSeconds().value_or(0), sample.seconds, 0.002);
        const AudioStream stream = asset.firstAudioStream().value_or(AudioStream {});
        EXPECT_EQ(stream.sampleRate, sample.stream.sampleRate);
        EXPECT_EQ(stream.formatId, sample.stream.formatId);
        EXPECT_EQ(stream.formatFlags, sample.stream.formatFlags);
        EXPECT_EQ(stream.bitsPerChannel, sample.stream.bitsPerChannel);
        EXPECT_EQ(shownValues(asset.metadata()), sample.fields);
    }
}

TEST(MediaAsset, GoesByTheContentWhereTheExtensionLies)
{
    const TemporaryFolder folder;
    for (const Sample &sample : samples()) {
        for (const char *const name : {"lie.flac", "lie.mp3", "lie.wv", "LIE"}) {
            SCOPED_TRACE(sample.name + " as "s + name);
            MediaAsset asset(folder.write(name, fileBytes(media / sample.name)));
            EXPECT_NEAR(asset.durationSeconds().value_or(0), sample.seconds, 0.002);
            EXPECT_EQ(asset.firstAudioStream(), sample.stream);
        }
    }
}

TEST(MediaAsset, ReadsDifferentFilesAtOnce)
{
    const auto readAll = [] {
        for (const Sample &sample : samples()) {
            MediaAsset asset(media / sample.name);
            EXPECT_EQ(asset.firstAudioStream(), sample.stream) << sample.name;
            EXPECT_EQ(shownValues(asset.metadata()), sample.fields) << sample.name;
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(readAll);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

TEST(MediaAsset, NamesTheMeaningsThatAllFormatsShare)
{
    const std::map<std::string, CommonKey> keys {{"TIT2", CommonKey::Title}, {"TPE1", CommonKey::Artist},
        {"TALB", CommonKey::AlbumName}, {"APIC", CommonKey::Artwork}, {"TRCK", CommonKey::None},
        {"TPOS", CommonKey::None}, {"TDRC", CommonKey::None}, {"TPE2", CommonKey::None}};
    for (const Sample &sample : samples()) {
        for (const MetadataItem &item : MediaAsset(media / sample.name).metadata()) {
            EXPECT_EQ(item.commonKey, keys.at(item.identifier.toStdString())) << sample.name;
        }
    }
}

// ID3v2, built byte by byte

std::string bigEndian(std::size_t value, int bitsPerByte, int bytes = 4)
{
    std::string result;
    for (int i = bytes - 1; i >= 0; --i) {
        result += static_cast<char>(value >> (bitsPerByte * i) & ((1U << bitsPerByte) - 1));
    }
    return result;
}

struct TagForm {
    int version;
    int flags = 0;
    int sizeBits = 8; ///< of a frame's size
};

std::string frame(
    const TagForm &form, const std::string &id, const std::string &content, const std::string &flags = "\0\0"s)
{
    return form.version == 2 ? id + bigEndian(content.size(), 8, 3) + content
                             : id + bigEndian(content.size(), form.sizeBits) + flags + content;
}

std::string tag(const TagForm &form, const std::string &body)
{
    return "ID3"s + char(form.version) + '\0' + char(form.flags) + bigEndian(body.size(), 7) + body;
}

std::string unsynchronised(const std::string &bytes)
{
    std::string result;
    for (const char c : bytes) {
        result += c == '\xFF' ? "\xFF\0"s : std::string(1, c);
    }
    return result;
}

TEST(MediaAsset, ReadsId3v2InAllItsForms)
{
    const TagForm v2 {2};
    const TagForm v3 {3};
    const TagForm v3Coded {3, 0x80};
    const TagForm v3Extended {3, 0x40};
    const TagForm v4 {4, 0, 7};
    const TagForm v4Plain {4, 0, 8};
    const TagForm v4Extended {4, 0x40, 7};
    const std::string utf16 = "\1\xFF\xFE\x7C\x01"s; // ż
    const std::string jpeg = "\xFF\xD8\xFF\xE0"s;
    const std::string longText = "\3"s + std::string(200, 'x');
    const std::string picture = "\0image/jpeg\0\3\0"s + jpeg;
    const struct {
        const char *what;
        std::string bytes;
        Values shown;
    } rows[] = {
        {"2.2",
            tag(v2,
                frame(v2, "TT2", "\0Title"s) + frame(v2, "TYE", "\0001999"s) + frame(v2, "PIC", "\0JPG\3\0"s + jpeg)),
            {{"TIT2", "Title"}, {"TDRC", "1999"}, {"APIC", jpeg}}},
        {"2.2 coded", tag({2, 0x80}, unsynchronised(frame(v2, "TT2", utf16) + frame(v2, "PIC", "\0JPG\3\0"s + jpeg))),
            {{"TIT2", "ż"}, {"APIC", jpeg}}},
        {"2.3 coded as a whole",
            tag(v3Coded,
                unsynchronised(frame(v3, "TIT2", utf16) + frame(v3, "APIC", picture) + frame(v3, "TALB", "\0A"s))),
            {{"TIT2", "ż"}, {"APIC", jpeg}, {"TALB", "A"}}},
        {"2.3 with an extended header",
            tag(v3Extended, bigEndian(6, 8) + std::string(6, '\0') + frame(v3, "TYER", "\0002001"s)),
            {{"TDRC", "2001"}}},
        {"2.3 with identifiers of 2.2", tag(v3, frame(v3, "TT2\0"s, "\0Title"s)), {{"TIT2", "Title"}}},
        {"2.3 with a group", tag(v3, frame(v3, "TIT2", "\x05\0Title"s, "\0\x20"s)), {{"TIT2", "Title"}}},
        {"2.4 with an extended header", tag(v4Extended, bigEndian(6, 7) + "\1\0"s + frame(v4, "TALB", "\3A"s)),
            {{"TALB", "A"}}},
        {"2.4 coded by frames",
            tag(v4,
                frame(v4, "APIC", bigEndian(picture.size(), 7) + unsynchronised(picture), "\0\3"s)
                    + frame(v4, "TIT2", "\3T"s)),
            {{"APIC", jpeg}, {"TIT2", "T"}}},
        {"2.4 with plain sizes", tag(v4Plain, frame(v4Plain, "TIT2", longText) + frame(v4Plain, "TALB", "\3A"s)),
            {{"TIT2", std::string(200, 'x')}, {"TALB", "A"}}},
        {"2.4 with the year in two frames",
            tag(v4,
                frame(v4, "TDRC",
                    "\3"
                    "2004"s)
                    + frame(v4, "TYER",
                        "\3"
                        "1980"s)),
            {{"TDRC", "2004"}}},
        {"encodings",
            tag(v4,
                frame(v4, "TIT2", "\0\xE9"s) + frame(v4, "TALB", "\2\x01\x7C"s)
                    + frame(v4, "TPE2", "\1\xFE\xFF\x01\x7C"s)),
            {{"TIT2", "é"}, {"TALB", "ż"}, {"TPE2", "ż"}}},
        {"several values", tag(v4, frame(v4, "TIT2", "\3A\0B"s) + frame(v4, "TPE1", utf16 + "\0\0\xFF\xFE\x42\0"s)),
            {{"TIT2", "A"}, {"TPE1", "ż, B"}}},
        {"empty text", tag(v4, frame(v4, "TIT2", "\3"s)), {{"TIT2", ""}}},
        {"compressed, encrypted, linked",
            tag(v4,
                frame(v4, "TIT2", "\0\0\0\1x"s, "\0\x08"s) + frame(v4, "TALB", "x", "\0\4"s)
                    + frame(v4, "APIC", "\0-->\0\3\0http://x"s) + frame(v4, "TPE1", "\3P"s)),
            {{"TPE1", "P"}}},
        {"cut", tag(v4, frame(v4, "TPE1", "\3P"s) + "TIT2"s + bigEndian(100, 7) + "\0\0\3T"s), {{"TPE1", "P"}}},
        {"padding and a second tag",
            tag(v4, frame(v4, "TPE1", "\3P"s) + std::string(30, '\0')) + tag(v4, frame(v4, "TPE1", "\3Q"s)),
            {{"TPE1", "P"}}},
    };
    const TemporaryFolder folder;
    for (const auto &row : rows) {
        EXPECT_EQ(shownValues(folder.write("a.mp3", row.bytes)), row.shown) << row.what;
    }
}

TEST(MediaAsset, ShowsTheFirstFrontCoverElseTheFirstPictureThatIsNotTooLarge)
{
    const TagForm v4 {4, 0, 7};
    const auto picture = [&](char type, const std::string &bytes) {
        return frame(v4, "APIC", "\0image/png\0"s + type + '\0' + bytes);
    };
    std::string largest;
    largest.resize(10'000'000, 'x');
    const struct {
        const char *what;
        std::string frames;
        std::vector<std::string> order;
    } rows[] = {
        {"front behind", picture(4, "back") + picture(3, "front"), {"back", "front"}},
        {"front first", picture(3, "front") + picture(4, "back") + picture(3, "front 2"), {"back", "front 2", "front"}},
        {"no front", picture(4, "back") + picture(5, "leaf"), {"leaf", "back"}},
        {"too large", picture(3, largest + 'x') + picture(4, largest), {largest}},
        {"too many", picture(4, largest) + picture(5, largest) + picture(6, largest) + picture(3, largest),
            {largest, largest, largest}},
        {"empty", picture(3, ""), {}},
    };
    const TemporaryFolder folder;
    for (const auto &row : rows) {
        std::vector<std::string> order;
        for (const MetadataItem &item : MediaAsset(folder.write("a.mp3", tag(v4, row.frames))).metadata()) {
            order.push_back(item.data.value_or(QByteArray()).toStdString());
        }
        EXPECT_EQ(order, row.order) << row.what;
    }
}

// What is no audio

TEST(MediaAsset, KnowsNothingOfWhatIsNoAudioFileAndDoesNotWaitForIt)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder.mp3");
    ASSERT_EQ(::mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", folder / "device.mp3");
    std::filesystem::create_symlink("loop.mp3", folder / "loop.mp3");
    folder.write("empty.mp3", "");
    folder.write("text.ogg", "no audio at all");
    folder.write("zeros.mp3", std::string(3'000'000, '\0'));
    for (const char *const name :
        {"missing.mp3", "folder.mp3", "pipe.mp3", "device.mp3", "loop.mp3", "empty.mp3", "text.ogg", "zeros.mp3"}) {
        MediaAsset asset(folder / name);
        EXPECT_EQ(asset.durationSeconds(), std::nullopt) << name;
        EXPECT_EQ(asset.firstAudioStream(), std::nullopt) << name;
        EXPECT_TRUE(asset.metadata().empty()) << name;
    }
}

TEST(MediaAsset, OpensNoOtherFileThatAListNames)
{
    const TemporaryFolder folder;
    folder.write("other.mp3", fileBytes(media / "id3v24.mp3"));
    const std::string other = (folder / "other.mp3").string();
    const std::string lists[] = {
        "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + other + "\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile 'other.mp3'\n",
        "<?xml "
        "version=\"1.0\"?><MPD><Period><AdaptationSet><Representation><BaseURL>other.mp3</BaseURL></Representation></"
        "AdaptationSet></Period></MPD>",
    };
    for (const std::string &list : lists) {
        for (const char *const name : {"list.aac", "list.mp3", "list.flac", "list.m4a"}) {
            EXPECT_EQ(MediaAsset(folder.write(name, list)).firstAudioStream(), std::nullopt) << name << list;
        }
    }
}

// Damaged and hostile files

TEST(MediaAsset, LivesThroughEveryShortenedAndChangedFile)
{
    const TemporaryFolder folder;
    const auto rewritten = [&](const char *name, const std::string &bytes) {
        std::filesystem::remove(folder / name); // because ext4 writes a file to the disk that is cut and filled anew
        return folder.write(name, bytes);
    };
    for (const Sample &sample : samples()) {
        const std::string whole = fileBytes(media / sample.name);
        for (std::size_t length = 0; length < whole.size(); length += length < 600 ? 7 : 127) {
            ASSERT_TRUE(answersSensibly(rewritten(sample.name, whole.substr(0, length))))
                << sample.name << " cut to " << length;
        }
        for (std::size_t i = 0; i < std::min<std::size_t>(whole.size(), 600); i += 2) {
            std::string changed = whole;
            changed[i] = static_cast<char>(i % 3 == 0 ? 0xFF : changed[i] ^ 0x81);
            ASSERT_TRUE(answersSensibly(rewritten(sample.name, changed))) << sample.name << " changed at " << i;
        }
    }
}

std::string repeated(const std::string &piece, std::size_t times)
{
    std::string result;
    for (std::size_t i = 0; i < times; ++i) {
        result += piece;
    }
    return result;
}

/// Chapters inside chapters: sizes from the inside, headers from the outside.
std::string nestedChapters(std::size_t depth)
{
    const TagForm v3 {3};
    const std::string innermost = frame(v3, "TIT2", "\0T"s);
    const std::string start = "c\0"s + std::string(16, '\0');
    const std::size_t headSize = frame(v3, "CHAP", start).size();
    std::string body;
    for (std::size_t inside = depth; inside > 0; --inside) {
        const std::size_t size = start.size() + (inside - 1) * headSize + innermost.size();
        body.append("CHAP").append(bigEndian(size, 8)).append("\0\0"s).append(start);
    }
    return body + innermost;
}

// Without limits these make a parser call itself until the stack ends, circle, inflate or search for minutes.
TEST(MediaAsset, EndsSoonOnBytesThatWereMadeToHoldItUp)
{
    const TagForm v3 {3};
    const struct {
        const char *name;
        std::string bytes;
    } rows[] = {
        {"nested.m4a",
            "\0\0\0\x10"
            "ftypM4A \0\0\0\0"s
                + repeated("\0\x7F\0\0moov"s, 200'000)},
        {"chapters.mp3", tag(v3, nestedChapters(60'000))},
        {"frames.mp3", tag(v3, repeated(frame(v3, "TIT2", "\0T"s), 500'000))},
        {"circle.wv", "wvpk\xF8\xFF\xFF\xFF\x10\x04"s + std::string(22, '\0')},
        {"sync.mp3", repeated("\xFF\xFB"s, 2'000'000)},
        {"chunks.wav", "RIFF\xFF\xFF\xFF\x7FWAVE"s + repeated("junk\0\0\0\0"s, 500'000)},
        {"pages.opus",
            fileBytes(media / "opus.opus").substr(0, 47)
                + repeated("OggS\0\1\0\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0"s, 100'000)},
        {"blocks.flac", "fLaC"s + repeated("\1\0\0\0"s, 1'000'000)},
    };
    const TemporaryFolder folder;
    for (const auto &row : rows) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(answersSensibly(folder.write(row.name, row.bytes))) << row.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << row.name;
    }
}

} // namespace
