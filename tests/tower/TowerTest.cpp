// Holds every #include of the sources against the tower: a floor uses itself and what the table below names, all of it
// further down, and a room's private headers stay in their room.
#include "support/Testing.h"

#include <QRegularExpression>

#include <map>
#include <set>

namespace {

/// From the ground up: a floor, and the floors that it uses directly. docs/architecture.md draws the same arrows.
const std::vector<std::pair<std::string, std::set<std::string>>> floors {
    {"platform", {}},
    {"media", {"platform"}},
    {"storage", {"platform"}},
    {"audio", {"media", "platform"}},
    {"library", {"audio", "media", "platform"}},
    {"artwork", {"library", "storage", "media", "platform"}},
    {"themes", {"storage", "platform"}},
    {"quality", {"artwork", "library", "storage", "platform"}},
    {"playback", {"library", "media"}},
    {"model", {"playback", "quality", "themes", "artwork", "library", "storage", "media", "platform"}},
    {"ui", {"model", "playback", "quality", "artwork", "storage", "media", "platform"}},
};

/// Rooms with private headers, and the headers that others may use.
const std::map<std::string, std::set<std::string>> rooms {
    {"platform/volumes", {"DiskKind.h", "Volumes.h"}},
    {"media/files", {"FlacBlocks.h", "MediaAsset.h"}},
    {"media/pictures", {"Images.h"}},
    {"media/sound", {"AudioOutput.h"}},
    {"ui/backups", {"BackupsPresenter.h"}},
    {"ui/device", {"DevicePresenter.h", "IPodFinish.h", "IPodProvider.h"}},
    {"ui/flow", {"CoverFlowPresenter.h", "StageProvider.h"}},
    {"ui/guide", {}},
    {"ui/library", {"AlbumSheetPresenter.h", "CoverSearchPresenter.h", "LibraryPresenter.h"}},
    {"ui/playlists", {"PlaylistsPresenter.h"}},
    {"ui/playback", {"MediaControls.h", "PlaybackPresenter.h"}},
    {"ui/quality", {"QualityPresenter.h"}},
    {"ui/shell", {"DesktopPanels.h", "ShellPresenter.h"}},
    {"ui/themes", {"ThemePictures.h", "ThemeSheetPresenter.h", "ThemesPresenter.h"}},
};

/// Libraries that only the named rooms may see; all else of Qt Core is everybody's.
const std::vector<std::pair<QString, std::set<std::string>>> reserved {
    {u"^(taglib/.*|[a-z0-9]+file\\.h|fileref\\.h|libav.*)$"_s, {"media/files"}},
    {u"^j(peg|config|error|morecfg).*\\.h$"_s, {"media/pictures"}},
    {u"^mpv/.*$"_s, {"media/sound"}},
    {u"^(openssl/.*|sqlite3\\.h)$"_s, {"platform/files"}},
    {u"^(QNetwork|QSsl|QTcp|QHost|QAbstractSocket|QtNetwork).*$"_s, {"platform/web"}},
    {u"^QDBus.*$"_s, {"platform/desktop", "platform/volumes", "ui"}},
    {u"^(QQ|QtQ|QSG|QGuiApplication).*$"_s, {"ui"}},
};

const std::set<std::string> *usesOf(const std::string &floor)
{
    const auto found
        = std::find_if(floors.begin(), floors.end(), [&](const auto &entry) { return entry.first == floor; });
    return found == floors.end() ? nullptr : &found->second;
}

std::string floorOf(const std::string &path)
{
    return path.substr(0, path.find('/'));
}

bool mayUse(const std::string &room, const std::string &header)
{
    const std::string floor = floorOf(room);
    const std::string target = floorOf(header);
    if (!usesOf(target) || (target != floor && !usesOf(floor)->contains(target))) {
        return false;
    }
    const std::string home = header.substr(0, header.rfind('/'));
    const auto guarded = rooms.find(home);
    return home == room || guarded == rooms.end() || guarded->second.contains(header.substr(home.size() + 1));
}

/// The includes of a source in this room, such as "media/files", that the tables do not allow.
std::vector<std::string> faults(const std::string &room, const std::string &source)
{
    static const QRegularExpression include(u"^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]"_s);
    std::vector<std::string> result;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);) {
        const QRegularExpressionMatch match = include.match(QString::fromStdString(line));
        if (!match.hasMatch()) {
            continue;
        }
        const QString name = match.captured(2);
        if (match.captured(1) == u"\""_s) {
            if (!mayUse(room, name.toStdString())) {
                result.push_back(name.toStdString());
            }
            continue;
        }
        for (const auto &[pattern, allowed] : reserved) {
            if (QRegularExpression(pattern).match(name).hasMatch() && !allowed.contains(room)
                && !allowed.contains(floorOf(room))) {
                result.push_back(name.toStdString());
            }
        }
    }
    return result;
}

} // namespace

TEST(Tower, theCheckKnowsUpFromDown)
{
    const std::string good = "#include \"platform/files/Files.h\"\n#include <QString>\n";
    const std::array<std::string, 3> rows[] = {{"storage", "  #  include \"model/Model.h\"", "model/Model.h"},
        {"storage", "#include \"Device.h\"", "Device.h"}, {"audio", "#include <fileref.h>", "fileref.h"},
        {"artwork", "#include <jpeglib.h>", "jpeglib.h"}, {"model", "#include <QQuickItem>", "QQuickItem"},
        {"audio", "#include \"storage/Device.h\"", "storage/Device.h"},
        {"media/files", "#include \"media/sound/Mpv.h\"", "media/sound/Mpv.h"},
        {"media/files", "#include <mpv/client.h>", "mpv/client.h"}};
    for (const auto &[room, line, fault] : rows) {
        EXPECT_EQ(faults(room, good + line), std::vector {fault});
    }
    EXPECT_TRUE(faults("media/files", good + "#include \"media/files/TagFile.h\"\n#include <fileref.h>").empty());
}

TEST(Tower, everyFloorUsesOnlyWhatTheTableNames)
{
    const fs::path sources = fs::path(MARLUNE_SOURCE_DIR) / "src";
    std::set<std::string> used; // "floor uses floor"
    std::set<std::string> below;
    for (const auto &[floor, uses] : floors) {
        EXPECT_TRUE(std::includes(below.begin(), below.end(), uses.begin(), uses.end())) << floor;
        below.insert(floor);
        std::size_t files = 0;
        for (const auto &entry : fs::recursive_directory_iterator(sources / floor)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".h" || extension == ".cpp") {
                ++files;
                const std::string source = fileBytes(entry.path());
                const std::string room = entry.path().parent_path().lexically_relative(sources).string();
                EXPECT_EQ(faults(room, source), std::vector<std::string> {}) << entry.path();
                for (const std::string &other : uses) {
                    if (source.find("#include \"" + other + '/') != std::string::npos) {
                        used.insert(floor + " uses " + other);
                    }
                }
            }
        }
        EXPECT_GT(files, 0U) << floor;
        for (const std::string &other : uses) {
            EXPECT_TRUE(used.contains(floor + " uses " + other))
                << floor << ": " << other << " is in the table in vain";
        }
    }
    for (const auto &entry : fs::directory_iterator(sources)) {
        EXPECT_TRUE(!entry.is_directory() || usesOf(entry.path().filename().string())) << entry.path();
    }
}
