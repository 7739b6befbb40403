#include "storage/SystemTool.h"

#include "platform/MarluneError.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int watchInterval = 100; // milliseconds
constexpr int longestDeath = 5'000; // milliseconds; a program can be stuck in a disk that does not answer

QProcessEnvironment cleanEnvironment()
{
    const QString path = QStringLiteral("PATH");
    QProcessEnvironment environment;
    environment.insert(path, QProcessEnvironment::systemEnvironment().value(path));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

void start(QProcess &process, const Storage::ToolBounds &bounds)
{
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessEnvironment(cleanEnvironment());
    // Runs in the child, between fork() and exec(), where nothing may be allocated.
    process.setChildProcessModifier([&bounds] {
        constexpr int noSuchFolder = 126;
        if (::chdir(bounds.folder.c_str()) != 0) {
            ::_exit(noSuchFolder);
        }
        ::setsid(); // without a terminal of its own it finds none to ask at
        if (bounds.largestFile >= 0) {
            const rlimit limit {.rlim_cur = rlim_t(bounds.largestFile), .rlim_max = rlim_t(bounds.largestFile)};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
    });
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted()) {
        throw MarluneError(QStringLiteral("Nie można uruchomić programu „%1”. Sprawdź, czy jest zainstalowany.")
                .arg(process.program()));
    }
}

QByteArray outputOf(QProcess &process, const Storage::ToolBounds &bounds)
{
    const auto refuse = [&process](const QString &reason) { throw MarluneError(reason.arg(process.program())); };
    QByteArray output;
    QElapsedTimer time;
    time.start();
    qint64 watched = 0;
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(watchInterval);
        output += process.readAll();
        if (output.size() > bounds.mostOutput) {
            refuse(QStringLiteral("Program „%1” wypisał za dużo."));
        }
        if (time.elapsed() > bounds.patience.count()) {
            refuse(QStringLiteral("Program „%1” nie zakończył pracy."));
        }
        if (time.elapsed() - watched >= watchInterval) {
            bounds.watch();
            watched = time.elapsed();
        }
    }
    bounds.watch();
    return output + process.readAll();
}

} // namespace

namespace Storage {

QString run(const QString &tool, const QStringList &arguments, const ToolBounds &bounds)
{
    QProcess process;
    process.setProgram(tool);
    process.setArguments(arguments);
    start(process, bounds);
    QByteArray output;
    try {
        output = outputOf(process, bounds);
    } catch (...) {
        process.kill();
        process.waitForFinished(longestDeath);
        throw;
    }
    const QUtf8StringView utf8(output);
    const QString text = utf8.isValidUtf8() ? utf8.toString() : QString();
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        return text;
    }
    throw MarluneError(text.isEmpty() ? QStringLiteral("Błąd narzędzia systemowego.") : text);
}

} // namespace Storage
