// Plays real files into nothing, in real time, and one into a sound server of the test's own.
#include "playback/Playback.h"

#include "support/Eventually.h"
#include "support/ExfatVolume.h"
#include "support/PrivateBus.h"
#include "support/WaveFile.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cmath>
#include <random>
#include <set>

void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << text.toStdString();
}

namespace {

const std::filesystem::path media = std::filesystem::path(MARLUNE_SOURCE_DIR) / "tests/data/media";
const QString missing = QStringLiteral("Plik nie jest dostępny. Sprawdź połączenie z iPodem.");
const QString refused = QStringLiteral("Nie można odtworzyć pliku na Macu: ");
const QString undecodable = QStringLiteral("Błąd dekodowania audio: Nieznany błąd");
const QString silent = QStringLiteral("macOS nie może odtworzyć tego pliku lub wyjście audio jest niedostępne.");

Track trackAt(const std::filesystem::path &file)
{
    Track track;
    track.id = QUuid::createUuid();
    track.url = file;
    return track;
}

/// The files below `folder` that this process holds open.
std::vector<std::filesystem::path> openFilesBelow(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::path> result;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::filesystem::path file = std::filesystem::read_symlink(entry, gone);
        if (!gone && file.native().starts_with(folder.native() + "/")) {
            result.push_back(file);
        }
    }
    return result;
}

/// The driver of a disk in user space; 0 where the kernel's own drives it.
pid_t driverOf(const std::filesystem::path &mountPoint)
{
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        std::ifstream stream(entry.path() / "cmdline");
        const std::string words {std::istreambuf_iterator<char>(stream), {}};
        if (name.find_first_not_of("0123456789") == std::string::npos && words.find("exfat") != std::string::npos
            && words.find(mountPoint.native()) != std::string::npos) {
            return std::stoi(name);
        }
    }
    return 0;
}

class PlaybackTest : public testing::Test {
protected:
    /// Until sound has run or the text says why not; false if neither comes. (A short file may have ended by then.)
    [[nodiscard]] bool settled()
    {
        return eventually([this] { return playback.error() || playback.position() > 0; });
    }
    [[nodiscard]] bool sounds() { return settled() && !playback.error(); }
    [[nodiscard]] QString errorOf(const std::filesystem::path &file)
    {
        playback.play(trackAt(file), {});
        return settled() ? playback.error().value_or(QString()) : QStringLiteral("neither plays nor fails");
    }
    [[nodiscard]] std::vector<Track> tracks(int count, double seconds) const
    {
        std::vector<Track> result;
        for (int i = 0; i < count; ++i) {
            result.push_back(trackAt(folder.write(std::to_string(i) + ".wav", wave(seconds))));
        }
        return result;
    }

    TemporaryFolder folder;
    Playback playback {"null"};
};

} // namespace

TEST_F(PlaybackTest, playsEachFormat)
{
    std::set<std::string> extensions;
    for (const auto &entry : std::filesystem::directory_iterator(media)) {
        const std::filesystem::path &file = entry.path();
        if (file.extension() == ".png") {
            continue;
        }
        extensions.insert(file.extension());
        EXPECT_EQ(errorOf(file), file.filename() == "monkeys.ape" ? undecodable : QString())
            << file; // that is no sound
        EXPECT_EQ(playback.current()->url, file);
        if (!playback.error() && file.filename() != "musepack.mpc") { // libavformat knows no length of that
            EXPECT_GT(playback.duration(), 0.04) << file;
        }
        if (!playback.error() && playback.duration() > 0.4) {
            const double middle = playback.duration() / 2;
            playback.seek(middle);
            EXPECT_TRUE(eventually([&] { return playback.position() > middle; })) << file;
            EXPECT_FALSE(playback.error()) << file;
        }
    }
    EXPECT_EQ(extensions.size(), 13U);
}

TEST_F(PlaybackTest, damagedFilesPlayOrSayWhyNot)
{
    std::mt19937 random(5);
    for (const auto &entry : std::filesystem::directory_iterator(media)) {
        const std::string good = fileBytes(entry.path());
        const std::string name = entry.path().filename();
        std::vector<std::string> versions;
        for (const double share : {0.0, 0.02, 0.1, 0.5, 0.95}) {
            versions.push_back(good.substr(0, std::size_t(double(good.size()) * share)));
        }
        for (const std::size_t distance : {3U, 40U, 400U}) {
            std::string noisy = good;
            for (std::size_t i = random() % distance; i < noisy.size(); i += 1 + random() % (2 * distance)) {
                noisy[i] = char(random());
            }
            versions.push_back(noisy);
        }
        for (std::size_t i = 0; i < versions.size(); ++i) {
            playback.play(trackAt(folder.write(std::to_string(i) + name, versions[i])), {});
            EXPECT_TRUE(eventually([&] { return playback.error() || playback.duration() > 0 || playback.playing(); }))
                << name << " version " << i;
        }
        EXPECT_EQ(errorOf(folder / ("0" + name)).left(refused.size()), refused) << name;
    }
}

TEST_F(PlaybackTest, opensNothingButTheFileItself)
{
    const std::string other = folder.write("other.wav", wave(1));
    const std::string lists[] = {"#EXTM3U\n" + other + "\n",
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\n" + other + "\n#EXT-X-ENDLIST\n",
        "FILE \"" + other + "\" WAVE\n TRACK 01 AUDIO\n INDEX 01 00:00:00\n",
        "ffconcat version 1.0\nfile " + other + "\n", "# mpv EDL v0\n" + other + "\n",
        "[playlist]\nFile1=" + other + "\n"};
    for (const std::string &list : lists) {
        for (const char *name : {"list.mp3", "list.m3u", "list.cue"}) {
            EXPECT_EQ(errorOf(folder.write(name, list)).left(refused.size()), refused) << list;
        }
    }
    EXPECT_EQ(errorOf(folder.path()).left(refused.size()), refused);
    ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    EXPECT_EQ(errorOf(folder / "pipe.wav").left(refused.size()), refused);
    EXPECT_EQ(errorOf(folder / "none.wav"), missing);
    // And any name is just a name.
    for (const char *name : {"-no-config.wav", "http:/a.wav", "\xff\xfe\n.wav", "100%d %%.wav", "memory:,a=b.wav"}) {
        EXPECT_EQ(errorOf(folder.write(name, wave(1))), QString()) << name;
    }
}

TEST_F(PlaybackTest, playPausesAndResumesAndPreviousGoesByThePosition)
{
    const std::vector<Track> list = tracks(2, 5);
    playback.play(list[1], list);
    EXPECT_EQ(playback.position(), 0);
    ASSERT_TRUE(sounds());
    EXPECT_DOUBLE_EQ(playback.duration(), 5);
    playback.play(list[1], {});
    EXPECT_FALSE(playback.playing());
    playback.play(list[1], {});
    EXPECT_TRUE(playback.playing());
    playback.toggle();
    const std::pair<double, double> seeks[] = {{-5, 0}, {NAN, 0}, {9, 5}, {2, 2}};
    for (const auto &[wanted, reached] : seeks) {
        playback.seek(wanted);
        EXPECT_EQ(playback.position(), reached);
    }
    playback.seek(3.1);
    playback.previous();
    EXPECT_EQ(playback.position(), 0);
    EXPECT_EQ(playback.current(), list[1]);
    playback.seek(3);
    playback.previous();
    EXPECT_EQ(playback.current(), list[0]);
    ASSERT_TRUE(sounds());
    playback.previous();
    EXPECT_EQ(playback.current(), list[0]);
    playback.seek(4);
    EXPECT_TRUE(eventually([&] { return playback.position() > 4; })); // the sound is there too
    EXPECT_EQ(playback.current(), list[0]);
    playback.stop();
    EXPECT_TRUE(!playback.current() && !playback.playing() && playback.position() == 0 && !playback.hasNext());
    EXPECT_TRUE(eventually([this] { return openFilesBelow(folder.path()).empty(); }));
}

TEST_F(PlaybackTest, afterTheLastTrackTogglePlaysItAgain)
{
    std::vector<Track> list = tracks(2, 0.3);
    playback.play(trackAt(list[0].url), list); // a stranger to the list
    ASSERT_TRUE(
        eventually([&] { return playback.current() == list[1] && playback.position() == playback.duration(); }));
    ASSERT_TRUE(eventually([&] { return !playback.playing() && playback.position() > 0.29; }));
    playback.toggle();
    EXPECT_EQ(playback.position(), 0);
    EXPECT_TRUE(sounds());
    // A paused track that is moved to its end does not go on to the next.
    playback.play(list[0], list);
    ASSERT_TRUE(sounds());
    playback.toggle();
    playback.seek(1);
    EXPECT_FALSE(eventually([&] { return playback.current() != list[0] || playback.playing(); }, 300));
    playback.toggle();
    EXPECT_LT(playback.position(), 0.29);
    EXPECT_TRUE(eventually([&] { return playback.current() == list[1]; }));
}

TEST_F(PlaybackTest, aFileThatVanishesEndsTheQueueWithoutLosingIt)
{
    std::vector<Track> list = tracks(3, 0.3);
    std::filesystem::remove(list[1].url);
    playback.play(list[0], list);
    ASSERT_TRUE(eventually([this] { return playback.error().has_value(); }));
    EXPECT_EQ(playback.error(), missing);
    EXPECT_TRUE(playback.current() == list[1] && !playback.playing());
    folder.write("1.wav", wave(2));
    playback.toggle();
    EXPECT_TRUE(sounds());
    playback.next();
    EXPECT_EQ(playback.current(), list[2]);
}

TEST_F(PlaybackTest, manyTracksInARushLeaveOneFileOpen)
{
    const std::vector<Track> files = tracks(40, 20);
    std::vector<Track> list;
    for (int i = 0; i < 10'000; ++i) {
        list.push_back(trackAt(files[std::size_t(i) % files.size()].url));
    }
    QElapsedTimer time;
    qint64 longest = 0;
    const auto timed = [&](const std::function<void()> &action) {
        time.start();
        action();
        longest = std::max(longest, time.elapsed());
    };
    playback.play(list[5'000], list);
    for (int i = 0; i < 100; ++i) {
        timed([this] { playback.next(); });
        if (i % 3 == 0) {
            timed([] { QCoreApplication::processEvents(); });
        }
    }
    for (int i = 0; i < 60; ++i) {
        timed([this] { playback.previous(); });
    }
    ASSERT_TRUE(sounds());
    EXPECT_EQ(playback.current(), list[5'040]);
    EXPECT_EQ(openFilesBelow(folder.path()), std::vector {list[5'040].url});
    EXPECT_LT(longest, 250); // the aim is 50 ms; a busy machine may take its time
    timed(playback.release(folder.path()));
    EXPECT_TRUE(openFilesBelow(folder.path()).empty() && !playback.current());
}

TEST_F(PlaybackTest, saysSoWhereThereIsNoSoundOutput)
{
    const Track track = tracks(1, 1).front();
    ::setenv("ALSA_CONFIG_PATH", "/dev/null", 1);
    for (const char *output : {"alsa", "no such output"}) {
        Playback mute(output);
        mute.play(track, {});
        EXPECT_TRUE(eventually([&] { return mute.error().has_value(); }));
        EXPECT_EQ(mute.error(), silent);
        EXPECT_FALSE(mute.playing());
    }
}

TEST_F(PlaybackTest, aDiskThatHangsHoldsUpNothingElse)
{
    ExfatVolume disk(folder / "disk");
    const pid_t driver = disk.available() ? driverOf(disk.mountPoint()) : 0;
    if (driver == 0) {
        GTEST_SKIP() << "no disk with a driver in user space: " << disk.reason();
    }
    const std::filesystem::path stuck = folder.write("disk/stuck.wav", wave(5));
    const Track good = tracks(1, 5).front();
    playback.prepare();
    ASSERT_EQ(::kill(driver, SIGSTOP), 0);
    QElapsedTimer time;
    time.start();
    playback.play(trackAt(stuck), {});
    EXPECT_FALSE(eventually([this] { return playback.playing() || playback.error(); }, 200));
    playback.play(good, {});
    EXPECT_TRUE(sounds());
    EXPECT_EQ(playback.current(), good);
    {
        Playback doomed("null");
        doomed.play(trackAt(stuck), {});
        EXPECT_FALSE(eventually([&] { return doomed.playing(); }, 200));
    }
    EXPECT_LT(time.elapsed(), 8'000);
    ASSERT_EQ(::kill(driver, SIGCONT), 0);
    EXPECT_TRUE(eventually([this] { return openFilesBelow(folder / "disk").empty(); }));
}

TEST_F(PlaybackTest, isHeardThroughARealSoundServer)
{
    QProcess server;
    dieWithThisProcess(server);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"}) {
        environment.insert(QString::fromLatin1(name), QString::fromStdString(folder.path().string()));
    }
    server.setProcessEnvironment(environment);
    const QString socket = QString::fromStdString((folder / "sound").string());
    server.start(QStringLiteral("pulseaudio"),
        {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
            QStringLiteral("-L"), QStringLiteral("module-null-sink sink_name=test"), QStringLiteral("-L"),
            QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + socket});
    if (!server.waitForStarted() || !eventually([&] { return std::filesystem::exists(folder / "sound"); }, 5'000)) {
        GTEST_SKIP() << "pulseaudio does not start: " << server.readAllStandardError().toStdString();
    }
    ::setenv("PULSE_SERVER", ("unix:" + (folder / "sound").string()).c_str(), 1);
    QProcess recorder;
    recorder.start(QStringLiteral("parec"),
        {QStringLiteral("--raw"), QStringLiteral("-d"), QStringLiteral("test.monitor"),
            QStringLiteral("--latency=2000")});
    ASSERT_TRUE(eventually([&] { return recorder.bytesAvailable() > 1000; }));
    recorder.readAll();
    Playback real("pulse");
    real.play(trackAt(media / "variable-rate.mp3"), {});
    QByteArray heard;
    EXPECT_TRUE(eventually([&] {
        heard += recorder.readAll();
        return real.position() > 0.2 && std::count(heard.begin(), heard.end(), '\0') < heard.size() / 2;
    })) << real.error().value_or(QString()).toStdString();
    for (QProcess *process : {&recorder, &server}) {
        process->kill();
        process->waitForFinished();
    }
}
