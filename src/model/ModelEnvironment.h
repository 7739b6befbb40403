// What the model needs from outside: the program gives it the real things, tests their own.
#pragma once

#include "artwork/CoverSearch.h"

#include "model/TimeLeft.h"

#include "library/TrackReader.h"

#include "storage/Device.h"

#include "themes/Catalogue.h"

#include "platform/desktop/Panels.h"
#include "platform/files/Settings.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

struct ModelEnvironment {
    Settings &settings;
    Panels &panels;
    /// Finds the devices among the mounted disks; called on a background thread.
    std::function<std::vector<Device>()> deviceDiscovery;
    /// Unmounts and ejects the volume; blocking, called on a background thread.
    std::function<void(const std::filesystem::path &)> ejectVolume;
    /// The user's folder for application data; the program's own lies in "Marlune" below it.
    std::filesystem::path supportFolder;
    /// Where the themes' catalogue is; none: no server is asked.
    Catalogue::Site themeSite = {};
    /// Remembers what files said when they were last read; may be none.
    std::shared_ptr<ReadingCache> cache = {};
    /// Makes tracks of the files of an import; blocking, called on a background thread.
    TrackSource readTracks = ::readTracks;
    /// Finds covers on the network.
    CoverSearch &covers = CoverSearch::shared();
    /// Where listening on the computer is heard, as AudioOutput takes it.
    QByteArray audioOutput = {};
    /// The name box of the playlist page at the start.
    QString playlistName = QStringLiteral("Moja playlista");
    /// Whether the library of the last run comes back.
    bool restoreLibrary = true;
    /// After this long a discovery counts as hanging, and the user is told.
    std::chrono::milliseconds discoveryTimeout = std::chrono::seconds(5);
    /// Tells the time by which the time left is estimated.
    std::function<TimeLeft::Moment()> clock = TimeLeft::Moment::clock::now;
};
