#include "media/sound/AudioOutput.h"

#include "media/sound/AudioSession.h"

namespace {

constexpr std::chrono::milliseconds releaseTimeout {3'000};
constexpr std::chrono::milliseconds endTimeout {1'000};

} // namespace

AudioOutput::AudioOutput(Listener listener, QByteArray output, std::chrono::milliseconds timeout)
    : m_session(std::make_shared<AudioSession>())
{
    m_session->m_listener = std::move(listener);
    m_session->m_output = std::move(output);
    m_session->m_timeout = timeout;
}

AudioOutput::~AudioOutput()
{
    const std::shared_ptr<PendingEnds> players = m_session->m_players;
    ++m_session->m_load;
    m_session->m_stage = AudioSession::Stage::Idle;
    m_session->m_engine.reset();
    m_session.reset();
    (void)players->waitForNone(endTimeout);
}

void AudioOutput::prepare()
{
    if (!m_session->m_engine) {
        m_session->makeEngine();
    }
}

void AudioOutput::load(const std::filesystem::path &file, double startSeconds)
{
    AudioSession &session = *m_session;
    ++session.m_load;
    session.m_stage = AudioSession::Stage::Opening;
    session.m_file = std::make_shared<OfferedFile>(file);
    session.m_start = startSeconds;
    session.m_entry = 0;
    session.m_outputAsked = false;
    session.m_duration = 0;
    session.m_seeking = false;
    session.m_seekTaken = false;
    session.m_nextSeek.reset();
    session.send();
    session.after(session.m_timeout, &AudioSession::judgeOpening);
}

void AudioOutput::setPaused(bool paused)
{
    if (m_session->m_stage == AudioSession::Stage::Running) {
        m_session->set("pause", paused ? "yes" : "no");
    }
}

void AudioOutput::seek(double seconds)
{
    if (m_session->m_stage != AudioSession::Stage::Running) {
        return;
    }
    m_session->m_nextSeek = seconds;
    if (!m_session->m_seeking) {
        m_session->onSeekDone();
    }
}

void AudioOutput::askPosition()
{
    if (m_session->m_stage == AudioSession::Stage::Running && !m_session->m_seeking) {
        m_session->ask(PlayerRequest::Position, "time-pos", MPV_FORMAT_DOUBLE);
    }
}

void AudioOutput::setVolume(double volume)
{
    m_session->m_volume = volume;
    if (m_session->m_engine) {
        m_session->set("volume", playerVolume(volume));
    }
}

void AudioOutput::unload()
{
    AudioSession &session = *m_session;
    ++session.m_load;
    session.m_stage = AudioSession::Stage::Idle;
    if (session.m_engine) {
        session.m_engine->withdraw();
        session.command(PlayerRequest::Other, {"stop"});
        session.awaitRelease();
    }
}

std::function<void()> AudioOutput::release()
{
    unload();
    return [openFiles = m_session->m_openFiles] { (void)openFiles->waitForNone(releaseTimeout); };
}
