#include "storage/SystemTool.h"

#include "support/Messages.h"
#include "support/TemporaryFolder.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

std::string runShell(const char *script, const Storage::ToolBounds &bounds = {})
{
    return Storage::run(QStringLiteral("sh"), {QStringLiteral("-c"), QString::fromUtf8(script)}, bounds).toStdString();
}

} // namespace

TEST(SystemTool, givesWhatTheProgramSaysAndFailsWhereItFails)
{
    EXPECT_EQ(runShell("echo Żółw; echo błąd >&2; echo dalej"), "Żółw\nbłąd\ndalej\n");
    EXPECT_EQ(runShell("printf '\\377'"), "");
    EXPECT_EQ(messageOf([] { runShell("echo pada; echo deszcz >&2; exit 3"); }), "pada\ndeszcz\n");
    for (const char *mute : {"exit 1", "printf '\\377'; exit 1", "kill -KILL $$"}) {
        EXPECT_EQ(messageOf([&] { runShell(mute); }), "Błąd narzędzia systemowego.") << mute;
    }
    EXPECT_EQ(messageOf([] { (void)Storage::run(QStringLiteral("marlune-no-such-tool"), {}); }),
        "Nie można uruchomić programu „marlune-no-such-tool”. Sprawdź, czy jest zainstalowany.");
}

TEST(SystemTool, passesArgumentsAsTheyAreAndNothingElse)
{
    ASSERT_EQ(::setenv("UNZIP", "-x everything", 1), 0);
    const QStringList arguments {
        QStringLiteral("%s|"), QStringLiteral("$HOME `id` ; * \"'"), QString(), QStringLiteral("ąę\n")};
    EXPECT_EQ(Storage::run(QStringLiteral("printf"), arguments).toStdString(), "$HOME `id` ; * \"'||ąę\n|");
    EXPECT_EQ(runShell("echo \"$UNZIP$HOME $LC_ALL\"; cat; (exec </dev/tty) 2>/dev/null || echo no terminal"),
        " C.UTF-8\nno terminal\n");
    ::unsetenv("UNZIP");
}

TEST(SystemTool, endsAProgramThatGoesBeyondItsBounds)
{
    const TemporaryFolder folder;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(messageOf([] { runShell("exec yes", {.mostOutput = 1'000'000}); }), "Program „sh” wypisał za dużo.");
    for (const char *hangs : {"exec sleep 100", "exec >&- 2>&-; exec sleep 100"}) {
        EXPECT_EQ(messageOf([&] { runShell(hangs, {.patience = 100ms}); }), "Program „sh” nie zakończył pracy.");
    }
    int calls = 0;
    const auto watch = [&] {
        if (++calls == 3) {
            throw MarluneError(QStringLiteral("dość"));
        }
    };
    EXPECT_EQ(messageOf([&] { runShell("echo $$ >pid; exec sleep 100", {.folder = folder.path(), .watch = watch}); }),
        "dość");
    EXPECT_EQ(::kill(std::stoi(fileBytes(folder / "pid")), 0), -1); // it is gone
    EXPECT_NE(messageOf([&] {
        runShell("head -c 2000000 /dev/zero >large", {.folder = folder.path(), .largestFile = 1'000'000});
    }),
        "");
    EXPECT_EQ(std::filesystem::file_size(folder / "large"), 1'000'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
}
