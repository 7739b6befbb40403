// Plays real files into nothing, in real time, and one into a sound server of the test's own.
#include "playback/Playback.h"

#include "support/ExfatVolume.h"
#include "support/OpenFiles.h"
#include "support/PrivateBus.h"
#include "support/Testing.h"
#include "support/WaveFile.h"

#include <sys/stat.h>

#include <cmath>
#include <set>

namespace {

const fs::path media = dataFile("media");
const QString missing = u"Plik nie jest dostępny. Sprawdź połączenie z iPodem."_s;
const QString refused = u"Nie można odtworzyć pliku na Macu: "_s;
const QString undecodable = u"Błąd dekodowania audio: Nieznany błąd"_s;
const QString silent = u"macOS nie może odtworzyć tego pliku lub wyjście audio jest niedostępne."_s;

Track trackAt(const fs::path &file)
{
    Track track;
    track.id = QUuid::createUuid();
    track.url = file;
    return track;
}

class PlaybackTest : public testing::Test {
protected:
    /// Whether sound runs; false if there is an error instead, or nothing for too long.
    [[nodiscard]] bool sounds()
    {
        return eventually([this] { return playback.error() || playback.playing(); }) && !playback.error();
    }
    /// What comes of a file: empty if it is heard, be it for a moment.
    [[nodiscard]] QString errorOf(const fs::path &file)
    {
        bool heard = false;
        const auto listening = QObject::connect(
            &playback, &Playback::playingChanged, &playback, [&] { heard = heard || playback.playing(); });
        playback.play(trackAt(file), {});
        const bool settled = eventually([&] { return heard || playback.error(); });
        QObject::disconnect(listening);
        return settled ? playback.error().value_or(QString()) : u"neither plays nor fails"_s;
    }
    [[nodiscard]] bool refuses(const fs::path &file) { return errorOf(file).startsWith(refused); }
    [[nodiscard]] std::vector<Track> tracks(int count, double seconds) const
    {
        std::vector<Track> result;
        for (int i = 0; i < count; ++i) {
            result.push_back(trackAt(folder.write(std::to_string(i) + ".wav", wave(seconds))));
        }
        return result;
    }

    /// What comes of a file in the end where a disk or a sound server hangs.
    static std::optional<AudioOutput::Failure> failureWithoutAnswer(const fs::path &file, const char *server)
    {
        std::optional<AudioOutput::Failure> failure;
        const auto failed = [&](AudioOutput::Failure kind, const QString &) { failure = kind; };
        AudioOutput output(
            {.started = {}, .moved = {}, .ended = {}, .failed = failed}, server, std::chrono::seconds(1));
        output.load(file, 0);
        (void)eventually([&] { return failure.has_value(); });
        return failure;
    }

    TemporaryFolder folder;
    Playback playback {"null"};
};

} // namespace

TEST_F(PlaybackTest, playsEachFormatFromAnyPlaceAndSaysWhatIsWrongWithADamagedFile)
{
    std::set<std::string> extensions;
    for (const auto &entry : fs::directory_iterator(media)) {
        const std::string name = entry.path().filename();
        const std::string bytes = fileBytes(entry.path());
        std::string noisy = bytes;
        for (std::size_t i = 5; i < noisy.size(); i += 37) {
            noisy[i] = char(noisy[i] ^ 0x55);
        }
        EXPECT_TRUE(refuses(folder.write("empty-" + name, {}))) << name;
        for (const std::string &damaged : {bytes.substr(0, bytes.size() / 2), noisy}) {
            const QString error = errorOf(folder.write("damaged-" + name, damaged));
            EXPECT_TRUE(error.isEmpty() || error.startsWith(refused) || error == undecodable) << name;
        }
        if (name.ends_with(".png")) {
            EXPECT_TRUE(refuses(entry.path()));
            continue;
        }
        extensions.insert(entry.path().extension());
        EXPECT_EQ(errorOf(entry.path()), name == "monkeys.ape" ? undecodable : QString()) << name; // that is no sound
        if (!playback.error()) {
            const bool unknown = name == "musepack.mpc"; // libavformat knows no length of that
            const double middle = unknown ? 0.2 : playback.duration() / 2;
            EXPECT_GT(middle, 0.02) << name;
            playback.seek(middle);
            EXPECT_TRUE(eventually([&] { return playback.position() > middle || !playback.playing(); })) << name;
            EXPECT_FALSE(playback.error()) << name;
            playback.seek(middle);
            playback.toggle();
            playback.toggle();
            EXPECT_EQ(playback.position(), middle) << name;
        }
    }
    EXPECT_EQ(extensions.size(), 13U);
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
            EXPECT_TRUE(refuses(folder.write(name, list))) << list;
        }
    }
    EXPECT_TRUE(refuses(folder.path()));
    ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    EXPECT_TRUE(refuses(folder / "pipe.wav"));
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
    ASSERT_TRUE(sounds());
    EXPECT_DOUBLE_EQ(playback.duration(), 5);
    for (const bool playing : {false, true}) {
        playback.play(list[1], {});
        EXPECT_EQ(playback.playing(), playing);
    }
    playback.toggle();
    for (const auto &[wanted, reached] : {std::pair(-5.0, 0), {NAN, 0}, {9, 5}, {2, 2}}) {
        playback.seek(wanted);
        EXPECT_EQ(playback.position(), reached);
    }
    playback.seek(3.1);
    playback.previous();
    EXPECT_TRUE(playback.current() == list[1] && playback.position() == 0);
    playback.seek(3);
    playback.previous();
    EXPECT_EQ(playback.current(), list[0]);
    ASSERT_TRUE(sounds());
    playback.previous();
    EXPECT_EQ(playback.current(), list[0]);
    playback.seek(4);
    EXPECT_TRUE(eventually([&] { return playback.position() > 4; })); // the sound is there too
    playback.stop();
    EXPECT_TRUE(!playback.current() && !playback.playing() && playback.position() == 0 && !playback.hasNext());
    EXPECT_TRUE(eventually([this] { return openFilesBelow(folder.path()).empty(); }));
}

TEST_F(PlaybackTest, afterTheLastTrackTogglePlaysItAgain)
{
    const std::vector<Track> list = tracks(2, 1);
    playback.play(trackAt(list[0].url), list); // a stranger to the list
    ASSERT_TRUE(eventually([&] { return playback.current() == list[1] && playback.position() == 1; }));
    EXPECT_FALSE(playback.playing());
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
    EXPECT_EQ(playback.position(), 0);
    EXPECT_TRUE(eventually([&] { return playback.current() == list[1]; }));
}

TEST_F(PlaybackTest, aFileThatVanishesEndsTheQueueWithoutLosingIt)
{
    const std::vector<Track> list = tracks(3, 5);
    const auto removeIt = [&] { return fs::remove(list[1].url); };
    const auto isMissed = [&] {
        return eventually([this] { return playback.error() == missing; }) && playback.current() == list[1]
            && !playback.playing();
    };
    removeIt();
    playback.play(list[1], list);
    EXPECT_TRUE(isMissed());
    folder.write("1.wav", wave(5));
    playback.toggle();
    EXPECT_TRUE(sounds());
    // From its middle, which is no place to go back to once it has failed.
    playback.toggle();
    playback.seek(5);
    playback.seek(4);
    removeIt();
    playback.toggle();
    EXPECT_TRUE(isMissed());
    playback.previous();
    EXPECT_EQ(playback.current(), list[0]);
    EXPECT_TRUE(sounds() && playback.hasNext() && !playback.hasPrevious());
}

TEST_F(PlaybackTest, aTrackIsHeardThoughTheUserInterfaceStallsForLongerThanItLasts)
{
    const std::vector<Track> list = tracks(2, 0.3);
    playback.play(list[1], {});
    ASSERT_TRUE(eventually([this] { return playback.playing(); }));
    playback.play(list[0], list);
    std::this_thread::sleep_for(std::chrono::milliseconds(900));
    EXPECT_TRUE(eventually([&] { return playback.current() == list[1] || playback.error(); }));
    EXPECT_EQ(playback.error(), std::nullopt);
}

TEST_F(PlaybackTest, manyTracksInARushLeaveOneFileOpen)
{
    const std::vector<Track> list = tracks(120, 5);
    playback.play(list[0], list);
    for (int i = 0; i < 100; ++i) {
        playback.next();
        if (i % 3 == 0) {
            QCoreApplication::processEvents();
        }
    }
    for (int i = 0; i < 60; ++i) {
        playback.previous();
    }
    ASSERT_TRUE(sounds());
    EXPECT_EQ(playback.current(), list[40]);
    EXPECT_EQ(openFilesBelow(folder.path()), std::vector {list[40].url});
}

TEST_F(PlaybackTest, saysSoWhereThereIsNoSoundOutput)
{
    ::setenv("ALSA_CONFIG_PATH", "/dev/null", 1);
    Playback mute("alsa");
    mute.play(tracks(1, 1).front(), {});
    EXPECT_TRUE(eventually([&] { return mute.error() == silent; }));
    EXPECT_FALSE(mute.playing());
}

TEST_F(PlaybackTest, aDiskThatHangsHoldsUpNothingElse)
{
    ExfatVolume disk(folder / "disk");
    QProcess search; // for its driver in user space; the kernel's own cannot be stopped
    search.startCommand(u"pgrep -f exfat.*"_s + QString::fromStdString(disk.mountPoint().string()));
    const pid_t driver = search.waitForFinished() ? search.readAll().toInt() : 0;
    if (!disk.available() || driver == 0) {
        GTEST_SKIP() << "no disk with a driver in user space: " << disk.reason();
    }
    const fs::path stuck = folder.write("disk/stuck.wav", wave(5));
    const Track good = tracks(1, 5).front();
    playback.play(good, {});
    ASSERT_TRUE(sounds()); // the player is there before the disk stops
    ASSERT_EQ(::kill(driver, SIGSTOP), 0);
    playback.play(trackAt(stuck), {});
    EXPECT_FALSE(eventually([this] { return playback.playing() || playback.error(); }, 200));
    playback.play(good, {});
    EXPECT_TRUE(sounds());
    EXPECT_EQ(failureWithoutAnswer(stuck, "null"), AudioOutput::Failure::NotThere);
    ASSERT_EQ(::kill(driver, SIGCONT), 0);
    EXPECT_TRUE(eventually([this] { return openFilesBelow(folder / "disk").empty(); }));
}

TEST_F(PlaybackTest, isHeardThroughARealSoundServer)
{
    for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH"}) {
        ::setenv(name, folder.path().c_str(), 1);
    }
    QProcess server;
    QProcess recorder;
    dieWithThisProcess(server);
    dieWithThisProcess(recorder);
    server.startCommand(
        u"pulseaudio -n --daemonize=no -L \"module-null-sink norewinds=1\" -L module-native-protocol-unix"_s);
    if (!server.waitForStarted() || !eventually([&] { return fs::exists(folder / "native"); })) {
        GTEST_SKIP() << "pulseaudio does not start: " << server.readAllStandardError().toStdString();
    }
    Playback real("pulse");
    real.play(trackAt(media / "variable-rate.mp3"), {});
    recorder.startCommand(u"parec --raw --latency=2000"_s);
    QByteArray heard;
    EXPECT_TRUE(eventually([&] { return heard.append(recorder.readAll()).size() - heard.count('\0') > 1000; }));
    ::kill(pid_t(server.processId()), SIGSTOP);
    EXPECT_EQ(failureWithoutAnswer(media / "variable-rate.mp3", "pulse"), AudioOutput::Failure::NoOutput);
    for (QProcess *process : {&recorder, &server}) {
        process->kill();
        process->waitForFinished();
    }
}
