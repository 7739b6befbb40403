#include "ui/lists/FigureReader.h"

#include <QPointer>

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds reportInterval {150};

/// Of the file itself, not of what it is a link to.
std::optional<FigureReader::Figure> withoutValue(const std::filesystem::path &file)
{
    struct stat status {};
    if (::lstat(file.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FigureReader::Figure {.value = std::nullopt,
        .size = status.st_size,
        .changedNanoseconds = std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec,
        .isFile = S_ISREG(status.st_mode)};
}

} // namespace

FigureReader::FigureReader(Read readOne, QObject *parent)
    : QObject(parent)
    , m_readOne(readOne)
{
}

FigureReader::~FigureReader()
{
    stop();
}

void FigureReader::read(Paths files)
{
    stop();
    m_wanted = std::move(files);
    Figures kept;
    for (const std::filesystem::path &file : m_wanted) {
        if (auto known = m_figures.extract(file)) {
            kept.insert(std::move(known));
        }
    }
    m_figures = std::move(kept);
    m_isDue = true;
    if (!m_isReading) { // otherwise the one under way may hang, and more would only hang beside it
        runReading();
    }
}

void FigureReader::stop()
{
    m_isDue = false;
    m_stop.request_stop();
    m_stop = std::stop_source();
}

const FigureReader::Figure *FigureReader::figure(const std::filesystem::path &file) const
{
    const auto found = m_figures.find(file);
    return found == m_figures.end() ? nullptr : &found->second;
}

QCoro::Task<> FigureReader::runReading()
{
    const QPointer<FigureReader> self(this);
    m_isReading = true;
    while (std::exchange(m_isDue, false)) {
        const std::stop_token stop = m_stop.get_token();
        const std::function<void(Figures)> report = [self, stop](Figures figures) {
            postToUi([self, stop, figures = std::move(figures)]() mutable {
                if (self && !stop.stop_requested()) {
                    self->take(std::move(figures));
                }
            });
        };
        auto work = [files = m_wanted, known = m_figures, readOne = m_readOne, stop, report] {
            return readAll(files, known, readOne, stop, report);
        };
        auto rest = co_await attempt(work, JobPriority::Utility);
        if (!self) {
            co_return;
        }
        if (rest.value && !stop.stop_requested()) {
            take(std::move(*rest.value));
        }
    }
    m_isReading = false;
}

void FigureReader::take(Figures figures)
{
    if (!figures.empty()) {
        for (auto &[file, figure] : figures) {
            m_figures[file] = figure;
        }
        Q_EMIT landed();
    }
}

/// On a job's thread. Returns what has not been reported yet.
FigureReader::Figures FigureReader::readAll(const Paths &files, const Figures &known, Read readOne,
    const std::stop_token &stop, const std::function<void(Figures)> &report)
{
    Figures fresh;
    auto reported = std::chrono::steady_clock::now();
    for (const std::filesystem::path &file : files) {
        std::optional<Figure> figure = withoutValue(file);
        const auto before = known.find(file);
        const bool isKnown = figure && figure->isFile && before != known.end() && before->second.value
            && before->second.size == figure->size && before->second.changedNanoseconds == figure->changedNanoseconds;
        if (!isKnown) {
            figure = figure.value_or(Figure {});
            figure->value = readOne(file, stop);
            fresh[file] = *figure;
        }
        if (stop.stop_requested()) {
            return {};
        }
        if (const auto now = std::chrono::steady_clock::now(); now - reported > reportInterval && !fresh.empty()) {
            report(std::exchange(fresh, {}));
            reported = now;
        }
    }
    return fresh;
}
