// One player of libmpv's: how it is made, what it may read, how it ends. The inside of AudioOutput.
//
// The player reads nothing but the one file that is offered to it, through calls of this class: no name is ever given
// to libmpv, so that none can be taken for an option, an address or a playlist, and whatever a file's content names is
// not opened. Nothing throws; one thread at a time, save where a comment says otherwise.
#pragma once

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>

struct Mpv;
struct mpv_handle;

/// Counts things that end on other threads. Any thread.
class PendingEnds {
public:
    void begin();
    void end();
    [[nodiscard]] bool none() const;
    /// Waits until there are none; false if some are left after `limit`.
    bool waitForNone(std::chrono::milliseconds limit) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_ended;
    int m_count = 0;
};

/// A file that is offered to players, and what its disk said. Any thread.
struct OfferedFile {
    explicit OfferedFile(std::filesystem::path path)
        : file(std::move(path))
    {
    }

    const std::filesystem::path file;
    std::atomic<bool> missing = false; ///< nothing was found at its path
    std::atomic<int> error = 0; ///< errno of what the disk refused, 0 if nothing
};

class AudioEngine {
public:
    /// `output` is libmpv's name of an output, empty for the desktop's. `wake` is called on any thread when events
    /// wait; it is not called any more once the engine's destruction has begun. `openFiles` counts the files that
    /// players hold open, `players` the players that have not ended yet. Null where libmpv does not start. Slow at its
    /// first call: not for the UI thread.
    [[nodiscard]] static std::unique_ptr<AudioEngine> make(const QByteArray &output, std::function<void()> wake,
        std::shared_ptr<PendingEnds> openFiles, std::shared_ptr<PendingEnds> players);
    /// Returns at once; the player ends on a thread of its own, because a disk that hangs would hold it up.
    ~AudioEngine();
    AudioEngine(const AudioEngine &) = delete;
    AudioEngine &operator=(const AudioEngine &) = delete;

    [[nodiscard]] const Mpv &library() const { return m_library; }
    [[nodiscard]] mpv_handle *handle() const { return m_handle; }
    /// Makes this the one file that the player can open; returns the address to load it by.
    [[nodiscard]] QByteArray offer(std::shared_ptr<OfferedFile> file);
    /// From now on the player can open no file.
    void withdraw();

private:
    struct Outside;
    AudioEngine(const Mpv &library, mpv_handle *handle, std::unique_ptr<Outside> outside);

    const Mpv &m_library;
    mpv_handle *m_handle;
    std::unique_ptr<Outside> m_outside; ///< what libmpv's threads call
};
