#include "model/TransferPlan.h"

#include "library/AlbumGrouping.h"

#include "library/TrackReader.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <map>

namespace {

// What is expected of the stages after the copying, on an iPod's hard disk.
constexpr TimeLeft::Seconds perCover {0.2};
constexpr TimeLeft::Seconds perCleanup {3};

/// How much of the copying is done with each of these files, if all their bytes and each file's end (its names, and the
/// disk's word that it has it) take the same time.
std::vector<double> copyingShares(const std::vector<Track> &items)
{
    constexpr double fileEnd = 500'000; // bytes copied in the same time
    std::vector<double> shares;
    double done = 0;
    for (const Track &track : items) {
        done += double(track.bytes) + fileEnd;
        shares.push_back(done);
    }
    for (double &share : shares) {
        share /= done;
    }
    return shares;
}

std::vector<PlannedCover> planCovers(const std::vector<Track> &items)
{
    std::map<QString, PlannedCover> groups;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Track &track = items[i];
        PlannedCover &group = groups[overrideKey(track.artist, track.album, track.url.parent_path())];
        group.album = track.artist + QStringLiteral(" – ") + track.album;
        group.items.push_back(i);
        if (group.artwork.isEmpty()) {
            group.artwork = track.artwork.value_or(QByteArray());
        }
    }
    std::vector<PlannedCover> covers;
    for (auto &[key, group] : groups) {
        if (!group.artwork.isEmpty()) {
            covers.push_back(std::move(group));
        }
    }
    return covers;
}

std::vector<TimeLeft::Expectation> planStages(std::size_t covers)
{
    std::vector<TimeLeft::Expectation> stages {std::nullopt};
    if (covers > 0) {
        stages.emplace_back(perCover * double(covers));
    }
    stages.emplace_back(perCleanup);
    return stages;
}

} // namespace

TransferPlan planTransfer(const std::vector<Track> &items, const std::vector<Track> &library)
{
    const std::vector<Album> albums = AlbumGrouping::albums(library);
    struct Place {
        const Album *album;
        bool severalDiscs;
    };
    QHash<QUuid, Place> places;
    for (const Album &album : albums) {
        const bool severalDiscs = album.discs().size() >= 2;
        for (const Track &track : album.tracks) {
            places.insert(track.id, {&album, severalDiscs});
        }
    }
    TransferPlan plan {
        .files = {}, .covers = planCovers(items), .ids = {}, .shares = copyingShares(items), .stages = {}};
    plan.stages = planStages(plan.covers.size());
    plan.files.reserve(items.size());
    plan.ids.reserve(items.size());
    for (const Track &track : items) {
        plan.ids.push_back(track.id);
        const auto place = places.constFind(track.id);
        if (place == places.constEnd()) {
            plan.files.push_back({track.url, track.artist, track.album, std::nullopt});
            continue;
        }
        std::optional<QString> disc;
        if (place->severalDiscs) {
            disc = QStringLiteral("CD ") + QString::number(AlbumGrouping::describe(track).disc);
        }
        plan.files.push_back({track.url, place->album->artist, place->album->title, disc});
    }
    return plan;
}

std::vector<PlannedCover> wholeCovers(const TransferPlan &plan, std::size_t copied)
{
    std::vector<PlannedCover> whole;
    std::copy_if(plan.covers.begin(), plan.covers.end(), std::back_inserter(whole),
        [copied](const PlannedCover &cover) { return cover.items.back() < copied; });
    return whole;
}

QSet<QUuid> finishedItems(const TransferPlan &plan, std::size_t copied, std::size_t covered)
{
    QSet<QUuid> finished(plan.ids.begin(), plan.ids.begin() + std::ptrdiff_t(copied));
    for (const PlannedCover &cover : plan.covers) {
        if (cover.items.back() < copied && covered > 0) {
            --covered;
            continue;
        }
        for (const std::size_t item : cover.items) {
            finished.remove(plan.ids[item]);
        }
    }
    return finished;
}

std::vector<std::filesystem::path> tracksOf(
    const PlannedCover &cover, std::span<const std::filesystem::path> destinations)
{
    std::vector<std::filesystem::path> tracks;
    for (const std::size_t item : cover.items) {
        if (item < destinations.size()) {
            tracks.push_back(destinations[item]);
        }
    }
    return tracks;
}
