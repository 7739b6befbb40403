#include "Figures.h"

#include <QProcess>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace Bench {

void require(bool done, const char *what)
{
    if (!done) {
        throw std::runtime_error(what);
    }
}

double seconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

Pair inTurn(const std::function<double()> &ours, const std::function<double()> &peer, int turns)
{
    std::vector<double> all;
    std::vector<double> peers;
    for (int turn = 0; turn < turns; ++turn) {
        all.push_back(ours());
        peers.push_back(peer());
    }
    return {median(all), median(peers)};
}

void runTool(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
        "the peer failed");
}

QString text(const std::filesystem::path &path)
{
    return QString::fromStdString(path.string());
}

void print(const char *name, const Pair &figures)
{
    std::printf("%s %.6g %.6g %.4g\n", name, figures.ours, figures.peer, figures.ours / figures.peer);
    std::fflush(stdout);
}

WorkFolder::WorkFolder()
{
    const char *home = std::getenv("HOME");
    const char *cache = std::getenv("XDG_CACHE_HOME");
    const std::filesystem::path base
        = cache ? std::filesystem::path(cache) : std::filesystem::path(home ? home : "/tmp") / ".cache";
    std::filesystem::create_directories(base);
    std::string name = (base / "marlune-bench-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no folder to work in");
    }
    m_path = name;
}

WorkFolder::~WorkFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Bench
