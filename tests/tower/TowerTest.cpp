// Holds every #include of the sources against the tower: a floor uses itself and the floors below it.
#include "support/TemporaryFolder.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

const std::map<std::string, int> floors {{"platform", 1}, {"storage", 2}, {"audio", 3}, {"library", 4}, {"artwork", 5},
    {"themes", 6}, {"quality", 7}, {"playback", 8}, {"model", 9}, {"ui", 10}};

/// Libraries that only the named floors may see; all else of Qt Core is everybody's.
const std::vector<std::pair<QString, std::string>> reserved {
    {QStringLiteral("^(taglib/.*|.*file(ref)?\\.h|libav.*|openssl/.*|mpv/.*|j(peg|config|error|morecfg).*\\.h)$"), "platform"},
    {QStringLiteral("^QDBus.*$"), "platform ui"},
    {QStringLiteral("^(QQ|QtQ|QSG|QGuiApplication).*$"), "ui"},
};

std::vector<std::string> faults(const std::string &floor, const std::string &source)
{
    static const QRegularExpression include(QStringLiteral("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]"));
    std::vector<std::string> result;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);) {
        const QRegularExpressionMatch match = include.match(QString::fromStdString(line));
        if (!match.hasMatch()) {
            continue;
        }
        const QString name = match.captured(2);
        if (match.captured(1) == QStringLiteral("\"")) {
            const auto target = floors.find(name.section(u'/', 0, 0).toStdString());
            if (target == floors.end() || target->second > floors.at(floor)) {
                result.push_back(name.toStdString());
            }
            continue;
        }
        for (const auto &[pattern, allowed] : reserved) {
            if (QRegularExpression(pattern).match(name).hasMatch() && allowed.find(floor) == std::string::npos) {
                result.push_back(name.toStdString());
            }
        }
    }
    return result;
}

} // namespace

TEST(Tower, theCheckKnowsUpFromDown)
{
    using Faults = std::vector<std::string>;
    EXPECT_EQ(faults("storage", "#include \"platform/Files.h\"\n#include \"storage/Device.h\"\n#include <QString>"),
        Faults {});
    EXPECT_EQ(faults("storage", "  #  include \"model/Model.h\""), Faults {"model/Model.h"});
    EXPECT_EQ(faults("storage", "#include \"Device.h\""), Faults {"Device.h"});
    EXPECT_EQ(faults("audio", "#include <fileref.h>"), Faults {"fileref.h"});
    EXPECT_EQ(faults("artwork", "#include <jpeglib.h>"), Faults {"jpeglib.h"});
    EXPECT_EQ(faults("model", "#include <QQuickItem>"), Faults {"QQuickItem"});
}

TEST(Tower, everyFloorUsesOnlyTheFloorsBelow)
{
    std::set<std::string> seen;
    for (const auto &[floor, number] : floors) {
        const std::filesystem::path folder = std::filesystem::path(MARLUNE_SOURCE_DIR) / "src" / floor;
        if (!std::filesystem::exists(folder)) {
            continue;
        }
        seen.insert(floor);
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".h" || extension == ".cpp") {
                EXPECT_EQ(faults(floor, fileBytes(entry.path())), std::vector<std::string> {}) << entry.path();
            }
        }
    }
    EXPECT_GE(seen.size(), 6U);
    for (const auto &entry : std::filesystem::directory_iterator(std::filesystem::path(MARLUNE_SOURCE_DIR) / "src")) {
        EXPECT_TRUE(!entry.is_directory() || floors.contains(entry.path().filename().string())) << entry.path();
    }
}
