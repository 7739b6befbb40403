// One number about each file of a list, such as its size, read in the background.
//
// The disk may be slow or hang, and the list be long: one job at a time goes through it and reports a few times a
// second. A file that has not changed since is not read again; a folder is, for it
// does not tell of changes further down. What was begun for another list is dropped. UI thread.
#pragma once

#include "platform/tasks/Background.h"

#include <QDateTime>
#include <QObject>

#include <filesystem>
#include <map>
#include <optional>
#include <stop_token>
#include <vector>

class FigureReader : public QObject {
    Q_OBJECT

public:
    using Paths = std::vector<std::filesystem::path>;
    /// Reads the figure of one file or folder on a job's thread; absent where it cannot be had. Must not throw.
    using Read = std::optional<std::int64_t> (*)(const std::filesystem::path &file, const std::stop_token &stop);

    struct Figure {
        std::optional<std::int64_t> value;
        std::int64_t size = 0; ///< of the file itself, in bytes
        std::int64_t changedNanoseconds = 0; ///< since 1970, UTC
        bool isFile = false; ///< no folder or link: size and time tell of each change
    };

    explicit FigureReader(Read readOne, QObject *parent = nullptr);
    ~FigureReader() override;

    /// Reads what is new or may have changed of these files; others are forgotten.
    void read(Paths files);
    /// Ends the reading under way soon; what has landed stays.
    void stop();
    /// Null until it has been read.
    [[nodiscard]] const Figure *figure(const std::filesystem::path &file) const;

Q_SIGNALS:
    /// More figures are there.
    void landed();

private:
    using Figures = std::map<std::filesystem::path, Figure>;

    QCoro::Task<> runReading();
    void take(Figures figures);
    static Figures readAll(const Paths &files, const Figures &known, Read readOne, const std::stop_token &stop,
        const std::function<void(Figures)> &report);

    Read m_readOne;
    Paths m_wanted;
    Figures m_figures;
    std::stop_source m_stop; ///< of the reading that may land
    bool m_isDue = false; ///< m_wanted has not been read since it was set
    bool m_isReading = false;
};
