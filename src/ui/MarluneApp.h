// The program's entry, and the assembly of its parts around one model. UI thread.
#pragma once

#include "model/Model.h"

#include <QQuickWindow>

#include <memory>

class CoverStore;
class QQmlEngine;

namespace MarluneApp {

/// Runs the program to its end; returns its exit code. Without a usable display it says so in one line and returns 1.
[[nodiscard]] int run(int argc, char **argv);

/// Names, style, font and the rules of text order; once, after the application object is made and before a Program.
void prepareApplication();

/// Makes the pages' types and pictures known to an engine.
void prepareEngine(QQmlEngine &engine, std::shared_ptr<const CoverStore> covers);

/// What one run of the program works with.
struct Setup {
    std::filesystem::path settingsFile;
    std::filesystem::path supportFolder; ///< the user's folder for application data
    std::filesystem::path cacheFile = {}; ///< where what music files said is remembered; nowhere, if empty
    std::function<std::vector<Device>()> deviceDiscovery = discoverDevices;
    std::function<void(const std::filesystem::path &)> ejectVolume;
    TrackSource readTracks = ::readTracks; ///< makes tracks of files
    Catalogue::Site themeSite = {}; ///< where the themes' catalogue is; none: no server is asked
    CoverSearch *covers = nullptr; ///< asked in place of the shared one, where given
    QByteArray audioOutput = {}; ///< where listening is heard, as AudioOutput takes it
    Panels *panels = nullptr; ///< asked in place of the desktop's dialogs, where given
    /// The user's, the best first; they count until the user chooses a language.
    QStringList preferredLanguages = {QStringLiteral("pl")};

    /// The user's own settings, folders and disks.
    [[nodiscard]] static Setup forUser();
};

/// Settings, model and window of one run. After it is destroyed no part of it is at work any more.
class Program {
public:
    /// Throws MarluneError where another program works with the same settings.
    explicit Program(const Setup &setup);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    [[nodiscard]] MarluneModel &model();
    /// Closes the window as soon as nothing is being written.
    void endSoon();
    /// Null if the window could not be made.
    [[nodiscard]] QQuickWindow *window() const;

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace MarluneApp
