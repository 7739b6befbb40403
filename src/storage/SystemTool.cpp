#include "storage/SystemTool.h"

#include "platform/MarluneError.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int watchInterval = 100; // milliseconds
constexpr qsizetype maxWords = 1'000; // UTF-16 units
constexpr int maxKillMilliseconds = 5'000; // milliseconds; a program can be stuck in a disk that does not answer

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
    process.setProcessChannelMode(bounds.merged ? QProcess::MergedChannels : QProcess::SeparateChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessEnvironment(cleanEnvironment());
    // Runs in the child, between fork() and exec(), where nothing may be allocated.
    process.setChildProcessModifier([&bounds] {
        constexpr int noSuchFolder = 126;
        if (::chdir(bounds.folder.c_str()) != 0) {
            ::_exit(noSuchFolder);
        }
        ::setsid(); // without a terminal of its own it finds none to ask at
        if (bounds.maxFileBytes >= 0) {
            const rlimit limit {.rlim_cur = rlim_t(bounds.maxFileBytes), .rlim_max = rlim_t(bounds.maxFileBytes)};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
    });
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted()) {
        throw MarluneError(QStringLiteral("Nie można uruchomić programu „%1”. Sprawdź, czy jest zainstalowany.")
                .arg(process.program()));
    }
}

struct ToolOutput {
    QByteArray result;
    QByteArray words; ///< where they are apart
};

ToolOutput outputOf(QProcess &process, const Storage::ToolBounds &bounds)
{
    const auto refuse = [&process](const QString &reason) { throw MarluneError(reason.arg(process.program())); };
    ToolOutput output;
    const auto read = [&] {
        output.result += process.readAllStandardOutput();
        output.words += bounds.merged ? QByteArray() : process.readAllStandardError();
    };
    QElapsedTimer time;
    time.start();
    qint64 watched = 0;
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(watchInterval);
        read();
        if (output.result.size() + output.words.size() > bounds.maxOutput) {
            refuse(QStringLiteral("Program „%1” wypisał za dużo."));
        }
        if (time.elapsed() > bounds.timeout.count()) {
            refuse(QStringLiteral("Program „%1” nie zakończył pracy."));
        }
        if (time.elapsed() - watched >= watchInterval) {
            bounds.watch();
            watched = time.elapsed();
        }
    }
    bounds.watch();
    read();
    return output;
}

QString decoded(const QByteArray &bytes)
{
    const QUtf8StringView utf8(bytes);
    return utf8.isValidUtf8() ? utf8.toString() : QString();
}

/// An alert has room for the end of it, where the reason is.
QString shortened(const QString &words)
{
    return words.size() > maxWords ? u'…' + words.last(maxWords) : words;
}

} // namespace

namespace Storage {

QString run(const QString &tool, const QStringList &arguments, const ToolBounds &bounds)
{
    QProcess process;
    process.setProgram(tool);
    process.setArguments(arguments);
    start(process, bounds);
    ToolOutput output;
    try {
        output = outputOf(process, bounds);
    } catch (...) {
        process.kill();
        process.waitForFinished(maxKillMilliseconds);
        throw;
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        return decoded(output.result);
    }
    const QString words = decoded(bounds.merged ? output.result : output.words);
    throw MarluneError(words.isEmpty() ? bounds.wordless : shortened(words));
}

} // namespace Storage
