#include "storage/SystemTool.h"

#include "support/Testing.h"

namespace {

using namespace std::chrono_literals;

std::string runShell(const char *script, const Storage::ToolBounds &bounds = {})
{
    return Storage::run(u"sh"_s, {u"-c"_s, QString::fromUtf8(script)}, bounds).toStdString();
}

} // namespace

TEST(SystemTool, givesWhatTheProgramSaysAndFailsWhereItFails)
{
    EXPECT_EQ(runShell("echo Żółw; echo błąd >&2; echo dalej"), "Żółw\nbłąd\ndalej\n");
    EXPECT_EQ(runShell("printf '\\377'"), "");
    EXPECT_EQ(messageOf([] { runShell("echo pada; echo deszcz >&2; exit 3"); }), "pada\ndeszcz\n");
    const std::string cut = messageOf([] { runShell("seq 100000; echo koniec; exit 1"); });
    EXPECT_TRUE(cut.starts_with("…") && cut.ends_with("\nkoniec\n") && cut.size() < 1100) << cut;
    for (const char *mute : {"exit 1", "printf '\\377'; exit 1", "kill -KILL $$"}) {
        EXPECT_EQ(messageOf([&] { runShell(mute); }), "Błąd narzędzia systemowego.") << mute;
    }
    EXPECT_EQ(messageOf([] { (void)Storage::run(u"marlune-no-such-tool"_s, {}); }),
        "Nie można uruchomić programu „marlune-no-such-tool”. Sprawdź, czy jest zainstalowany.");
}

TEST(SystemTool, passesArgumentsAsTheyAreAndNothingElse)
{
    const QStringList arguments {u"%s|"_s, u"$HOME `id` ; * \"'"_s, {}, u"ąę"_s};
    EXPECT_EQ(Storage::run(u"printf"_s, arguments).toStdString(), "$HOME `id` ; * \"'||ąę|");
    ASSERT_EQ(::setenv("UNZIP", "-x everything", 1), 0);
    EXPECT_EQ(runShell("echo \"$UNZIP$HOME $LC_ALL\"; cat; pwd", {.folder = "/usr"}), " C.UTF-8\n/usr\n");
    // The leader of a session of its own has no terminal until it opens one.
    EXPECT_EQ(runShell("[ $(cut -d ' ' -f 6 /proc/$$/stat) = $$ ] && echo alone"), "alone\n");
}

TEST(SystemTool, endsAProgramThatGoesBeyondItsBounds)
{
    const TemporaryFolder folder;
    EXPECT_EQ(messageOf([] { runShell("exec yes", {.maxOutput = 1'000'000}); }), "Program „sh” wypisał za dużo.");
    for (const char *hangs : {"exec sleep 100", "exec >&- 2>&-; exec sleep 100"}) {
        EXPECT_EQ(messageOf([&] { runShell(hangs, {.timeout = 100ms}); }), "Program „sh” nie zakończył pracy.");
    }
    Storage::ToolBounds bounds {.folder = folder.path(), .maxFileBytes = 1'000'000};
    EXPECT_NE(messageOf([&] { runShell("head -c 2000000 /dev/zero >large", bounds); }), "");
    EXPECT_EQ(fs::file_size(folder / "large"), 1'000'000U);
    bounds.watch = [&] { fs::exists(folder / "pid") ? throw MarluneError(u"dość"_s) : void(); };
    EXPECT_EQ(messageOf([&] { runShell("echo $$ >pid; exec sleep 100", bounds); }), "dość");
    EXPECT_EQ(::kill(std::stoi(fileBytes(folder / "pid")), 0), -1); // it is gone
}
