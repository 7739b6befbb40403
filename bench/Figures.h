// Figures of the bench: ours and a peer, measured in turn in one run, as medians.
#pragma once

#include <QStringList>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Bench {

inline constexpr int rounds = 5;

/// Ends the run where a figure cannot be had.
void require(bool done, const char *what);

/// Seconds that `work` takes.
[[nodiscard]] double seconds(const std::function<void()> &work);
[[nodiscard]] double median(std::vector<double> values);

struct Pair {
    double ours = 0;
    double peer = 0;
};

/// Medians of `rounds` turns; each function returns its own figure.
[[nodiscard]] Pair inTurn(const std::function<double()> &ours, const std::function<double()> &peer, int turns = rounds);

/// Runs a peer to its end, its words unheard; throws if it fails.
void runTool(const QString &program, const QStringList &arguments);
[[nodiscard]] QString text(const std::filesystem::path &path);

/// One line: name, ours, peer, ours / peer.
void print(const char *name, const Pair &figures);

/// A folder beside the user's cache that is removed at the end.
class WorkFolder {
public:
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

// One function a figure.
/// Repairs covers in a library of its own.
void covers(const std::filesystem::path &library);
void import(const std::filesystem::path &library);
void flac(const std::filesystem::path &library);
void digest(const std::filesystem::path &library);
void transfer(const std::filesystem::path &library);
void cleanup(const std::filesystem::path &library);
void zip(const std::filesystem::path &library);
void install(const std::filesystem::path &library);
void group(const std::filesystem::path &library);
void browse(const std::filesystem::path &library);
void jpeg(const std::filesystem::path &library);
void jpegProgressive(const std::filesystem::path &library);
void check(const std::filesystem::path &library);
void catalogue(const std::filesystem::path &library);
void play(const std::filesystem::path &library);
/// Looks through a copy of the library, with a cover in each album's folder, as through a device's music.
void inspect(const std::filesystem::path &library);
/// Compares files of its own.
void duplicates(const std::filesystem::path &library);
/// Both import the library into the real window; they share one run.
void heartbeatAndMemory(const std::filesystem::path &library);
/// The same with what the kernel holds of files dropped, for root.
void importCold(const std::filesystem::path &library);
/// A start with seven times the library, all of it remembered, until it is shown; against a stat of each file.
void restart(const std::filesystem::path &library);
/// Reads a folder again in which nothing has changed.
void rescan(const std::filesystem::path &library);
/// One such start, in a process of its own: writes a line of figures, and ends.
[[nodiscard]] int wholeLibrary(int argc, char **argv, const std::filesystem::path &folder);
/// Starts the program with the library, and without any.
void start(const std::filesystem::path &library);
/// One such start, in a process of its own: writes a line with the first frame, and ends. `folder` holds the settings.
[[nodiscard]] int firstFrame(int argc, char **argv, const std::filesystem::path &folder);
/// What the model's lists of many tracks take: milliseconds on the UI thread, but for the first.
void lists(const std::filesystem::path &library);
/// From the choice of the table to its first frame with many tracks, against sorting their names.
void table(const std::filesystem::path &library);
/// From a letter in the search to the frame that shows it, with many tracks, in each view.
void typing(const std::filesystem::path &library);
/// The outline of folders with many files of its own: until it stands, against sorting names by keys that are ready;
/// and the longest time that the UI thread is held.
void tree(const std::filesystem::path &library);
/// Scrolls through the album grid.
void tiles(const std::filesystem::path &library);
/// Scrolls through each view of the library, from end to end.
void scroll(const std::filesystem::path &library);
/// The same in lists of 100,000 tracks.
void scrollMany(const std::filesystem::path &library);
/// What scrolling through all covers leaves in memory.
void coversMemory(const std::filesystem::path &library);
/// Scrolls through all drawn iPods; needs no library.
void drawings(const std::filesystem::path &library);
/// The carousel over a device with the library's music: until it stands, an arrow held, single steps, memory.
void flow(const std::filesystem::path &library);
/// The text operation on texts of the program's own table.
void translate(const std::filesystem::path &library);
/// From the start of a process of its own to the first frame of a window whose library comes back.
[[nodiscard]] double secondsToFirstFrame(const std::filesystem::path &library);
/// A change of the language, with the library in the window.
void language(const std::filesystem::path &library);

} // namespace Bench
