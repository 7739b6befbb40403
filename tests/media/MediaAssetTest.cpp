// Reads the files of tests/data/media (made by make_media.py) and files built here byte by byte.
#include "media/files/MediaAsset.h"

#include "support/Testing.h"

#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <map>
#include <thread>

namespace {

using namespace std::string_literals;

const fs::path media = dataFile("media");

using Values = std::map<std::string, std::string>;

/// What a reader of the items ends up with: the last value of each identifier, texts in UTF-8.
Values shownValues(const std::vector<MetadataItem> &items)
{
    Values shown;
    for (const MetadataItem &item : items) {
        shown[item.identifier.toStdString()] = item.data.value_or(item.text.value_or(QString()).toUtf8()).toStdString();
    }
    return shown;
}

// Tags

Values allFields(Values fields)
{
    fields.merge(
        Values {{"TIT2", "Gęślą jaźń"}, {"TPE1", "Zażółć, Druga"}, {"TALB", "Jesień"}, {"TPE2", "Różni wykonawcy"},
            {"TRCK", "7/12"}, {"TPOS", "2/3"}, {"TDRC", "2004-03-01"}, {"APIC", fileBytes(media / "front.png")}});
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
        {"flac.m4a", 0.05, {96000, 0, 0, 24}, {}}, // its sample entry says 48000
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

TEST(MediaAsset, ReadsLengthStreamAndTagsOfEveryFormatByItsContentOnSeveralThreads)
{
    const std::map<std::string, CommonKey> shared {{"TIT2", CommonKey::Title}, {"TPE1", CommonKey::Artist},
        {"TALB", CommonKey::AlbumName}, {"APIC", CommonKey::Artwork}};
    const auto readAll = [&](const char *name) {
        const TemporaryFolder folder;
        for (const Sample &sample : samples()) {
            MediaAsset asset(name ? folder.write(name, fileBytes(media / sample.name)) : media / sample.name);
            EXPECT_NEAR(asset.durationSeconds().value_or(0), sample.seconds, 0.002) << sample.name;
            EXPECT_EQ(asset.firstAudioStream(), sample.stream) << sample.name;
            EXPECT_EQ(shownValues(asset.metadata()), sample.fields) << sample.name;
            for (const MetadataItem &item : asset.metadata()) {
                const auto key = shared.find(item.identifier.toStdString());
                EXPECT_EQ(item.commonKey, key == shared.end() ? CommonKey::None : key->second) << sample.name;
            }
        }
    };
    std::vector<std::jthread> threads;
    for (const char *name : {static_cast<const char *>(nullptr), "lie.flac", "lie.mp3", "lie.wv", "LIE"}) {
        threads.emplace_back(readAll, name);
    }
}

std::string replaced(std::string bytes, const std::string &part, const std::string &by)
{
    EXPECT_NE(bytes.find(part), std::string::npos);
    return bytes.replace(bytes.find(part), part.size(), by);
}

TEST(MediaAsset, KnowsTheSoundInAnMp4File)
{
    const std::string plain = fileBytes(media / "aac.m4a");
    const std::string half
        = replaced(plain, "\x10\0\0\0\0\xAC\x44"s, "\x10\0\0\0\0\x56\x22"s); // the sample entry's rate
    const std::string config = "\x12\x08\x56\xE5\0"s; // ISO 14496-3, section 1.6.2
    const std::tuple<const char *, std::string, AudioStream> rows[] = {
        {"no bands above", replaced(half, config, "\x13\x88\x56\xE5\0"s), {22050, AudioFormat::mpeg4Aac}},
        {"bands above in front", replaced(half, config, "\x2B\x8A\x08\0\0"s), {44100, AudioFormat::mpeg4Aac}},
        {"bands above behind", replaced(half, config, "\x13\x88\x56\xE5\xA0"s), {44100, AudioFormat::mpeg4Aac}},
        {"rate written out", replaced(half, config, "\x17\x80\x56\x22\x08"s), {44100, AudioFormat::mpeg4Aac}},
        {"xHE", replaced(half, config, "\xF9\x48\x40\0\0"s), {44100, AudioFormat::mpeg4Aac}},
        {"object type not understood", replaced(half, config, "\xF8\x88\0\0\0"s), {22050, AudioFormat::mpeg4Aac}},
        {"MP3", replaced(plain, "\x17\x40\x15"s, "\x17\x6B\x15"s), {44100}},
    };
    const TemporaryFolder folder;
    for (const auto &[what, bytes, stream] : rows) {
        EXPECT_EQ(MediaAsset(folder.write("a.m4a", bytes)).firstAudioStream(), stream) << what;
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
const TagForm v2 {2};
const TagForm v3 {3};
const TagForm v4 {4, 0, 7};

std::string frame(
    const TagForm &form, const std::string &id, const std::string &content, const std::string &flags = "\0\0"s)
{
    return form.version == 2 ? id + bigEndian(content.size(), 8, 3) + content
                             : id + bigEndian(content.size(), form.sizeBits) + flags + content;
}

std::string unsynchronised(const std::string &bytes)
{
    return QByteArray::fromStdString(bytes).replace("\xFF", QByteArray("\xFF\0", 2)).toStdString();
}

std::string tag(const TagForm &form, const std::string &frames)
{
    const std::string body = form.flags & 0x80 ? unsynchronised(frames) : frames;
    return "ID3"s + char(form.version) + '\0' + char(form.flags) + bigEndian(body.size(), 7) + body;
}

TEST(MediaAsset, ReadsId3v2InAllItsForms)
{
    const auto cover
        = [](char type, const std::string &bytes) { return frame(v4, "APIC", "\0image/png\0"s + type + '\0' + bytes); };
    const std::string largest(10'000'000, 'x');
    const TagForm v4Plain {4, 0, 8};
    const std::string utf16 = "\1\xFF\xFE\x7C\x01"s; // ż
    const std::string jpeg = "\xFF\xD8\xFF\xE0"s;
    const std::string picture = "\0image/jpeg\0\3\0"s + jpeg;
    const std::string picture2 = "\0JPG\3\0"s + jpeg;
    const std::string artist = frame(v4, "TPE1", "\3P"s);
    const std::string longText(200, 'x');
    const std::tuple<const char *, TagForm, std::string, Values> rows[] = {
        {"2.2", v2, frame(v2, "TT2", "\0T"s) + frame(v2, "TYE", "\0001999"s) + frame(v2, "PIC", picture2),
            {{"TIT2", "T"}, {"TDRC", "1999"}, {"APIC", jpeg}}},
        {"2.2 coded", {2, 0x80}, frame(v2, "TT2", utf16) + frame(v2, "PIC", picture2), {{"TIT2", "ż"}, {"APIC", jpeg}}},
        {"2.3 coded as a whole", {3, 0x80},
            frame(v3, "TIT2", utf16) + frame(v3, "APIC", picture) + frame(v3, "TALB", "\0A"s),
            {{"TIT2", "ż"}, {"APIC", jpeg}, {"TALB", "A"}}},
        {"2.3 with an extended header", {3, 0x40},
            bigEndian(6, 8) + std::string(6, '\0') + frame(v3, "TYER", "\0002001"s), {{"TDRC", "2001"}}},
        {"2.3 with identifiers of 2.2", v3, frame(v3, "TT2\0"s, "\0T"s), {{"TIT2", "T"}}},
        {"2.3 with a group", v3, frame(v3, "TIT2", "\x05\0T"s, "\0\x20"s), {{"TIT2", "T"}}},
        {"2.4 with an extended header", {4, 0x40, 7}, bigEndian(6, 7) + "\1\0"s + artist, {{"TPE1", "P"}}},
        {"2.4 coded by frames", v4,
            frame(v4, "APIC", bigEndian(picture.size(), 7) + unsynchronised(picture), "\0\3"s) + artist,
            {{"APIC", jpeg}, {"TPE1", "P"}}},
        {"2.4 with plain sizes", v4Plain, frame(v4Plain, "TIT2", "\3"s + longText) + artist,
            {{"TIT2", longText}, {"TPE1", "P"}}},
        {"2.4 with the year in two frames", v4, frame(v4, "TDRC", "\0032004"s) + frame(v4, "TYER", "\0031980"s),
            {{"TDRC", "2004"}}},
        {"encodings", v4,
            frame(v4, "TIT2", "\0\xE9"s) + frame(v4, "TALB", "\2\x01\x7C"s) + frame(v4, "TPE2", "\1\xFE\xFF\x01\x7C"s)
                + frame(v4, "TPE1", "\3"s),
            {{"TIT2", "é"}, {"TALB", "ż"}, {"TPE2", "ż"}, {"TPE1", ""}}},
        {"several values", v4, frame(v4, "TIT2", "\3A\0B"s) + frame(v4, "TPE1", utf16 + "\0\0\xFF\xFE\x42\0"s),
            {{"TIT2", "A"}, {"TPE1", "ż, B"}}},
        {"compressed, encrypted, linked", v4,
            frame(v4, "TIT2", "\0\0\0\1x"s, "\0\x08"s) + frame(v4, "TALB", "x", "\0\4"s)
                + frame(v4, "APIC", "\0-->\0\3\0http://x"s) + artist,
            {{"TPE1", "P"}}},
        {"cut", v4, artist + "TIT2"s + bigEndian(100, 7) + "\0\0\3T"s, {{"TPE1", "P"}}},
        {"padding", v4, artist + std::string(30, '\0'), {{"TPE1", "P"}}},
        // The first front cover, otherwise the first picture, none of more than 10 MB.
        {"front behind", v4, cover(4, "back") + cover(3, "front") + cover(3, "second"), {{"APIC", "front"}}},
        {"no front", v4, cover(4, "back") + cover(5, "leaf"), {{"APIC", "back"}}},
        {"too large", v4, cover(3, largest + 'x') + cover(4, largest), {{"APIC", largest}}},
        {"empty", v4, cover(3, "") + artist, {{"TPE1", "P"}}},
    };
    const TemporaryFolder folder;
    for (const auto &[what, form, frames, shown] : rows) {
        const std::string second = tag(v4, frame(v4, "TPE1", "\3Q"s)); // is not read
        const auto file = folder.write("a.mp3", tag(form, frames) + second);
        EXPECT_TRUE(shownValues(MediaAsset(file).metadata()) == shown) << what;
    }
    const std::string covers = cover(4, largest) + cover(5, largest) + cover(6, largest) + cover(3, largest);
    EXPECT_EQ(MediaAsset(folder.write("a.mp3", tag(v4, covers))).metadata().size(), 3U); // of 32 MB in all
}

TEST(MediaAsset, KnowsMusepackOfVersion7ByItsFirstBytes)
{
    // 100 frames of 1152 samples at 44100 Hz, of which half a frame is the decoder's delay.
    const std::string bytes = "MP+\x07\x64\0\0\0"s + std::string(2'000, '\0');
    const TemporaryFolder folder;
    MediaAsset asset(folder.write("a", bytes));
    EXPECT_NEAR(asset.durationSeconds().value_or(0), 2.599, 0.002);
    EXPECT_EQ(asset.firstAudioStream(), (AudioStream {44100}));
}

TEST(MediaAsset, TakesNoFrameOfFlacForOneOfAac)
{
    const std::string flac = fileBytes(media / "plain.flac");
    const TemporaryFolder folder;
    for (const char *const name : {"a", "a.aac", "a.flac"}) {
        MediaAsset asset(folder.write(name, flac.substr(flac.find("\xFF\xF8"))));
        EXPECT_EQ(asset.durationSeconds(), std::nullopt) << name;
        EXPECT_EQ(asset.firstAudioStream(), (AudioStream {8000, 0, 0, 16})) << name;
    }
}

TEST(MediaAsset, KnowsNothingOfWhatIsNoAudioFileAndOpensNoOther)
{
    const TemporaryFolder folder;
    const std::string other = folder.write("other.mp3", fileBytes(media / "id3v24.mp3")).string();
    fs::create_directory(folder / "folder.mp3");
    ASSERT_EQ(::mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "device.mp3");
    fs::create_symlink("loop.mp3", folder / "loop.mp3");
    std::vector<fs::path> files {folder / "missing.mp3", folder / "folder.mp3", folder / "pipe.mp3",
        folder / "device.mp3", folder / "loop.mp3", folder.write("empty.mp3", ""), folder.write("zeros.mp3", "")};
    fs::resize_file(files.back(), 60'000'000);
    std::string noise(20'000, '\0');
    for (unsigned i = 0, place = 1; i < noise.size(); ++i, place = place * 1664525U + 1013904223U) {
        noise[i] = static_cast<char>(place >> 24);
    }
    const std::string texts[] = {
        "no audio at all",
        std::string(5'000, '\0'),
        noise,
        "<!DOCTYPE html><html><head><title>Not found</title></head>" + std::string(3'000, ' ') + "</html>",
        "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + other + "\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile 'other.mp3'\n",
        "<MPD profiles=\"urn:mpeg:dash:profile:full:2011\"><Period><AdaptationSet><Representation><BaseURL>other.mp3"
        "</BaseURL></Representation></AdaptationSet></Period></MPD>",
    };
    for (const std::string &text : texts) {
        for (const char *extension :
            {".aac", ".mp3", ".flac", ".m4a", ".alac", ".ogg", ".opus", ".mpc", ".ape", ".wv", ".wav", ".aiff"}) {
            files.push_back(folder.write("text " + std::to_string(files.size()) + extension, text));
        }
    }
    const std::clock_t start = std::clock();
    for (const fs::path &file : files) {
        MediaAsset asset(file);
        EXPECT_EQ(asset.durationSeconds(), std::nullopt) << file;
        EXPECT_EQ(asset.firstAudioStream(), std::nullopt) << file;
        EXPECT_TRUE(asset.metadata().empty()) << file;
    }
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC * 3 / 2); // a search through all the zeros takes 3 seconds
}

// Damaged and hostile files

std::string repeated(const std::string &piece, int times)
{
    return QByteArray::fromStdString(piece).repeated(times).toStdString();
}

/// Chapters inside chapters: sizes from the inside, headers from the outside.
std::string nestedChapters(std::size_t depth)
{
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
    const std::pair<const char *, std::string> rows[] = {
        {"nested.m4a", "\0\0\0\020ftypM4A \0\0\0\0"s + repeated("\0\x7F\0\0moov"s, 200'000)},
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
    for (const auto &[name, bytes] : rows) {
        const auto start = std::chrono::steady_clock::now();
        MediaAsset asset(folder.write(name, bytes));
        EXPECT_LE(asset.durationSeconds().value_or(0), 100e6) << name;
        (void)asset.firstAudioStream();
        (void)asset.metadata();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << name;
    }
}

} // namespace
