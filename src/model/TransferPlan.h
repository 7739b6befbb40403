// What a transfer of chosen music is to do, decided before any of it is done. Pure; any thread.
#pragma once

#include "library/Track.h"

#include "model/TimeLeft.h"

#include "storage/Transfer.h"

#include <QSet>
#include <QUuid>

#include <span>
#include <vector>

/// One album's tracks in one folder of the computer, and the cover that they get.
struct PlannedCover {
    QString album; ///< as the user knows it
    QByteArray artwork;
    std::vector<std::size_t> items; ///< places in the plan's files

    bool operator==(const PlannedCover &) const = default;
};

struct TransferPlan {
    std::vector<TransferFile> files; ///< one an item, in their order
    std::vector<PlannedCover> covers;
    std::vector<QUuid> ids; ///< of the items
    std::vector<double> shares; ///< of the copying that are done with each file
    std::vector<TimeLeft::Expectation> stages; ///< copying, covers where there are any, cleanup
};

/// The plan for `items`. Their places follow from the albums of the whole `library`: a disc that is sent alone still
/// gets its disc folder.
[[nodiscard]] TransferPlan planTransfer(const std::vector<Track> &items, const std::vector<Track> &library);

/// The covers of which all files are among the first `copied` of the plan's.
[[nodiscard]] std::vector<PlannedCover> wholeCovers(const TransferPlan &plan, std::size_t copied);

/// The items of which nothing is left to be done once the first `copied` files and the first `covered` of their whole
/// covers are on the device. A part of an album waits for the rest: a cover goes with all of it.
[[nodiscard]] QSet<QUuid> finishedItems(const TransferPlan &plan, std::size_t copied, std::size_t covered);

/// The files in `destinations` that a cover goes beside; a transfer that ended early has fewer of them.
[[nodiscard]] std::vector<std::filesystem::path> tracksOf(
    const PlannedCover &cover, std::span<const std::filesystem::path> destinations);
