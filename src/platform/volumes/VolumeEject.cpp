// Unmounting and ejecting through UDisks2, the disk service of Linux desktops (its D-Bus reference:
// org.freedesktop.UDisks2.Block, .Filesystem and .Drive).

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/volumes/Volumes.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QMap>
#include <QVariantMap>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace Volumes {

namespace {

using ManagedObjects = QMap<QDBusObjectPath, QMap<QString, QVariantMap>>;

constexpr std::chrono::milliseconds lookupTimeout = std::chrono::seconds(30); // the service may have to start first

/// A connection of one call's own. The shared one of the process stays dead once the bus was restarted.
class SystemBus {
public:
    SystemBus()
        : m_name(QStringLiteral("marlune-eject-%1").arg(++s_count))
        , m_connection(QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name))
    {
    }
    ~SystemBus() { QDBusConnection::disconnectFromBus(m_name); }
    SystemBus(const SystemBus &) = delete;
    SystemBus &operator=(const SystemBus &) = delete;

    [[nodiscard]] bool isConnected() const { return m_connection.isConnected(); }

    /// Waits for the answer, an error included.
    [[nodiscard]] QDBusMessage call(const QString &object, const QString &interface, const QString &method,
        const QVariantList &arguments, std::chrono::milliseconds timeout) const
    {
        QDBusMessage request
            = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.UDisks2"), object, interface, method);
        request.setArguments(arguments);
        const auto limit = std::clamp<std::int64_t>(timeout.count(), 1, std::numeric_limits<int>::max());
        return m_connection.call(request, QDBus::Block, int(limit));
    }

private:
    inline static std::atomic<int> s_count = 0;
    QString m_name;
    QDBusConnection m_connection;
};

/// A mounted file system in the service's own names.
struct MountedBlock {
    QString block;
    QString drive; ///< "/" for a disk without one, such as a loop device
};

enum class EjectStep : std::uint8_t { Unmount, Eject };

struct Refusal {
    std::vector<const char *> names; ///< D-Bus error names; a final dot stands for all that begin so
    QString unmounting;
    QString ejecting;
};

/// What the service's errors mean to the user, at each of the two steps.
const std::vector<Refusal> &refusals()
{
    static const std::vector<Refusal> known {
        {{"org.freedesktop.UDisks2.Error.DeviceBusy"},
            QStringLiteral("Nie udało się odmontować iPoda: dysk jest używany przez inny program. Dysk jest nadal "
                           "zamontowany. Zamknij otwarte z niego pliki i spróbuj ponownie."),
            QStringLiteral(
                "iPod jest już odmontowany, ale nie udało się go wysunąć: inna partycja jego dysku jest nadal "
                "zamontowana lub używana. Nie odłączaj iPoda, dopóki nie odmontujesz jej w menedżerze plików "
                "i nie wysuniesz tam całego dysku.")},
        {{"org.freedesktop.UDisks2.Error.NotAuthorized", "org.freedesktop.UDisks2.Error.NotAuthorizedCanObtain",
             "org.freedesktop.DBus.Error.AccessDenied"},
            QStringLiteral("Nie udało się odmontować iPoda: to konto nie ma do tego uprawnień. Dysk jest nadal "
                           "zamontowany. Odmontuj go jako administrator, zanim odłączysz iPoda."),
            QStringLiteral(
                "iPod jest już odmontowany, ale nie udało się go wysunąć: to konto nie ma do tego uprawnień. "
                "iPod może nadal pokazywać, że nie wolno go odłączać. Wysuń go jako administrator.")},
        {{"org.freedesktop.UDisks2.Error.NotAuthorizedDismissed"},
            QStringLiteral(
                "iPod nie został odmontowany: pytanie o hasło zostało zamknięte. Dysk jest nadal zamontowany. "
                "Spróbuj ponownie i podaj hasło."),
            QStringLiteral(
                "iPod jest już odmontowany, ale nie został wysunięty: pytanie o hasło zostało zamknięte. iPod "
                "może nadal pokazywać, że nie wolno go odłączać. Wysuń go w menedżerze plików.")},
        {{"org.freedesktop.UDisks2.Error.AlreadyUnmounting"},
            QStringLiteral("Nie udało się odmontować iPoda: inny program właśnie go odmontowuje. Nie odłączaj iPoda; "
                           "poczekaj, aż jego dysk zniknie z menedżera plików."),
            {}},
        {{"org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
             "org.freedesktop.DBus.Error.Spawn."},
            QStringLiteral(
                "Nie udało się odmontować iPoda: usługa dysków UDisks2 nie jest zainstalowana lub nie działa. "
                "Dysk jest nadal zamontowany. Zainstaluj lub uruchom usługę udisks2 i spróbuj ponownie."),
            QStringLiteral(
                "iPod jest już odmontowany, ale nie udało się go wysunąć: usługa dysków UDisks2 przestała "
                "działać. iPod może nadal pokazywać, że nie wolno go odłączać. Uruchom usługę udisks2 i wysuń "
                "go w menedżerze plików.")},
        // The call went out and no answer came back, so that nothing is known of the disk.
        {{"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
             "org.freedesktop.DBus.Error.TimedOut", "org.freedesktop.DBus.Error.Disconnected",
             "org.freedesktop.UDisks2.Error.Timedout"},
            QStringLiteral("Nie wiadomo, czy iPod został odmontowany: usługa dysków nie odpowiedziała. Nie odłączaj "
                           "iPoda; sprawdź w menedżerze plików, czy jego dysk zniknął."),
            QStringLiteral("iPod jest już odmontowany, ale nie wiadomo, czy został wysunięty: usługa dysków nie "
                           "odpowiedziała. Nie odłączaj iPoda, dopóki pokazuje, że nie wolno tego robić.")},
    };
    return known;
}

bool isNamed(const Refusal &refusal, const QString &error)
{
    return std::any_of(refusal.names.begin(), refusal.names.end(), [&](const char *name) {
        const QLatin1StringView known(name);
        return known.endsWith(QLatin1Char('.')) ? error.startsWith(known) : error == known;
    });
}

QString refusalText(EjectStep step, const QDBusMessage &answer)
{
    for (const Refusal &refusal : refusals()) {
        const QString &text = step == EjectStep::Unmount ? refusal.unmounting : refusal.ejecting;
        if (isNamed(refusal, answer.errorName()) && !text.isEmpty()) {
            return text;
        }
    }
    const QString text = step == EjectStep::Unmount
        ? QStringLiteral(
              "Nie udało się odmontować iPoda. Dysk jest nadal zamontowany. Odmontuj go w menedżerze plików, "
              "zanim odłączysz iPoda. Odpowiedź usługi dysków: %1")
        : QStringLiteral(
              "iPod jest już odmontowany, ale nie udało się go wysunąć i może nadal pokazywać, że nie wolno go "
              "odłączać. Wysuń go w menedżerze plików. Odpowiedź usługi dysków: %1");
    const QString message = answer.errorMessage().trimmed();
    return text.arg(message.isEmpty() ? answer.errorName() : message);
}

void writeOut(const std::filesystem::path &mountPoint)
{
    // Closed again on return: an open folder would keep the disk busy.
    const Files::Descriptor folder(::open(mountPoint.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const bool opened = folder.get() >= 0;
    const int error = opened && ::syncfs(folder.get()) == 0 ? 0 : errno;
    if (error == 0) {
        return;
    }
    if (!opened && error == ENOENT) {
        throw MarluneError(QStringLiteral("Nie udało się odmontować iPoda: jego dysk nie jest już zamontowany w „%1”.")
                .arg(Files::text(mountPoint)));
    }
    const QString text = opened
        ? QStringLiteral(
              "Nie udało się zapisać do końca danych na iPodzie (%1). Dysk jest nadal zamontowany. Nie odłączaj "
              "iPoda; sprawdź ostatnio wgrane pliki i spróbuj ponownie.")
        : QStringLiteral(
              "Nie udało się odmontować iPoda: jego dysku nie można otworzyć (%1). Dysk jest nadal zamontowany. "
              "Odmontuj go w menedżerze plików, zanim odłączysz iPoda.");
    throw MarluneError(text.arg(QString::fromStdString(std::generic_category().message(error))));
}

bool isMountedAt(const QVariantMap &fileSystem, const std::filesystem::path &mountPoint)
{
    const auto points = qdbus_cast<QList<QByteArray>>(fileSystem.value(QStringLiteral("MountPoints")));
    return std::any_of(points.begin(), points.end(), [&](QByteArray point) {
        if (point.endsWith('\0')) {
            point.chop(1);
        }
        return std::string_view(point.constData(), std::size_t(point.size())) == mountPoint.native();
    });
}

std::optional<MountedBlock> findMounted(const ManagedObjects &objects, const std::filesystem::path &mountPoint)
{
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        const QVariantMap fileSystem = object->value(QStringLiteral("org.freedesktop.UDisks2.Filesystem"));
        if (isMountedAt(fileSystem, mountPoint)) {
            const QVariantMap block = object->value(QStringLiteral("org.freedesktop.UDisks2.Block"));
            const auto drive = block.value(QStringLiteral("Drive")).value<QDBusObjectPath>();
            return MountedBlock {object.key().path(), drive.path()};
        }
    }
    return std::nullopt;
}

MountedBlock askForMounted(const SystemBus &bus, const std::filesystem::path &mountPoint)
{
    const QDBusMessage answer = bus.call(QStringLiteral("/org/freedesktop/UDisks2"),
        QStringLiteral("org.freedesktop.DBus.ObjectManager"), QStringLiteral("GetManagedObjects"), {}, lookupTimeout);
    const QString error = answer.errorName();
    if (error == QLatin1StringView("org.freedesktop.DBus.Error.NoReply")
        || error == QLatin1StringView("org.freedesktop.DBus.Error.Disconnected")) {
        throw MarluneError(
            QStringLiteral("Nie udało się odmontować iPoda: usługa dysków nie odpowiedziała. Dysk jest nadal "
                           "zamontowany. Poczekaj chwilę i spróbuj ponownie."));
    }
    if (answer.type() != QDBusMessage::ReplyMessage) {
        throw MarluneError(refusalText(EjectStep::Unmount, answer));
    }
    std::optional<MountedBlock> found;
    if (answer.signature() == QLatin1StringView("a{oa{sa{sv}}}")) {
        found = findMounted(qdbus_cast<ManagedObjects>(answer.arguments().constFirst()), mountPoint);
    }
    if (!found) {
        throw MarluneError(
            QStringLiteral("Nie udało się odmontować iPoda: usługa dysków nie zna dysku zamontowanego w „%1”. "
                           "Dysk jest nadal zamontowany. Odmontuj go tak, jak został zamontowany, zanim "
                           "odłączysz iPoda.")
                .arg(Files::text(mountPoint)));
    }
    return *found;
}

/// Without "auth.no_user_interaction" the desktop may ask for a password.
QDBusMessage askFor(EjectStep step, const SystemBus &bus, const MountedBlock &disk, std::chrono::milliseconds timeout)
{
    const QVariantList noOptions {QVariantMap()};
    return step == EjectStep::Unmount ? bus.call(disk.block, QStringLiteral("org.freedesktop.UDisks2.Filesystem"),
                                            QStringLiteral("Unmount"), noOptions, timeout)
                                      : bus.call(disk.drive, QStringLiteral("org.freedesktop.UDisks2.Drive"),
                                            QStringLiteral("Eject"), noOptions, timeout);
}

} // namespace

void eject(const std::filesystem::path &mountPoint, std::chrono::milliseconds timeout)
{
    const std::filesystem::path asked = Files::standardized(mountPoint);
    writeOut(asked);

    const SystemBus bus;
    if (!bus.isConnected()) {
        throw MarluneError(
            QStringLiteral("Nie udało się odmontować iPoda: brak połączenia z systemową magistralą D-Bus. "
                           "Dysk jest nadal zamontowany. Odmontuj go w menedżerze plików, zanim odłączysz "
                           "iPoda."));
    }
    const MountedBlock disk = askForMounted(bus, asked);

    const QDBusMessage unmounting = askFor(EjectStep::Unmount, bus, disk, timeout);
    // "NotMounted": another program was quicker, and the drive is still to be ejected.
    if (unmounting.type() != QDBusMessage::ReplyMessage
        && unmounting.errorName() != QLatin1StringView("org.freedesktop.UDisks2.Error.NotMounted")) {
        throw MarluneError(refusalText(EjectStep::Unmount, unmounting));
    }
    // A file system that is mounted twice, or a second partition, is not unmounted on the way: nobody asked for that.
    // The drive then answers that it is busy.
    if (disk.drive.isEmpty() || disk.drive == QLatin1StringView("/")) {
        return;
    }
    const QDBusMessage ejecting = askFor(EjectStep::Eject, bus, disk, timeout);
    if (ejecting.type() != QDBusMessage::ReplyMessage) {
        throw MarluneError(refusalText(EjectStep::Eject, ejecting));
    }
}

} // namespace Volumes
