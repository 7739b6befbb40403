#include "platform/files/Settings.h"

#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

#include <fcntl.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

constexpr std::int64_t maxFileBytes = 256'000'000;

struct Stored {
    std::filesystem::path file; ///< where the settings are, links resolved: a link of the user's stays one
    QJsonObject values;
    bool mayBeReplaced = true;
    QString notice = {}; ///< what the user should know of the file, may be empty
};

/// Whether surely nothing exists there, not even a link to nothing. A disk that does not answer leaves it open.
bool isAbsent(const std::filesystem::path &file)
{
    std::error_code failure;
    return std::filesystem::symlink_status(file, failure).type() == std::filesystem::file_type::not_found;
}

Stored readStored(const std::filesystem::path &file)
{
    if (isAbsent(file)) {
        return {.file = file, .values = {}};
    }
    std::error_code failure;
    Stored stored {.file = std::filesystem::canonical(file, failure), .values = {}};
    if (failure) {
        stored.file = file;
    }
    const std::optional<QByteArray> bytes = failure ? std::nullopt : Files::readBelow(stored.file, maxFileBytes);
    const QJsonDocument document = QJsonDocument::fromJson(bytes.value_or(QByteArray()));
    if (document.isObject()) {
        stored.values = document.object();
        return stored;
    }
    if (!bytes) { // it may be whole, on a disk that does not answer or is not there
        stored.mayBeReplaced = false;
        return stored;
    }
    // Damaged: the next change would replace it, so it is set aside.
    std::filesystem::path aside = stored.file;
    aside += ".damaged-" + QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmsszzz")).toStdString();
    stored.mayBeReplaced = diskCalls().renameat(AT_FDCWD, stored.file.c_str(), AT_FDCWD, aside.c_str()) == 0;
    if (stored.mayBeReplaced) {
        stored.notice = QStringLiteral("Plik ustawień był uszkodzony. Jest teraz odłożony obok jako ")
            + Files::text(aside.filename()) + QStringLiteral(", a program zaczyna od ustawień domyślnych.");
    }
    return stored;
}

QMap<QString, QString> textsOf(const QJsonObject &values, const QString &keyPrefix)
{
    QMap<QString, QString> result;
    for (auto entry = values.begin(); entry != values.end(); ++entry) {
        if (entry->isString() && entry.key().startsWith(keyPrefix)) {
            result.insert(entry.key(), entry->toString());
        }
    }
    return result;
}

} // namespace

/// Writes the newest state handed to it; states that a newer one overtakes are never written.
class Settings::Writer {
public:
    Writer(std::filesystem::path file, bool mayReplace)
        : m_file(std::move(file))
        , m_mayReplace(mayReplace)
        , m_thread([this] { run(); })
    {
    }

    ~Writer()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    void write(const QJsonObject &values)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_pending = values;
        }
        m_changed.notify_all();
    }

    void wait()
    {
        std::unique_lock lock(m_mutex);
        m_written.wait(lock, [this] { return !m_pending && !m_writing; });
    }

    void setFailureHandler(std::function<void(QString)> handler)
    {
        const std::lock_guard lock(m_handlerMutex);
        m_failed = std::move(handler);
    }

private:
    void run()
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            m_changed.wait(lock, [this] { return m_pending || m_ending; });
            if (!m_pending) {
                return;
            }
            QJsonObject values = std::move(*m_pending);
            m_pending.reset();
            m_writing = true;
            lock.unlock();
            const std::exception_ptr failure = save(values);
            values = {};
            if (failure) {
                report(describeFailure(failure));
            }
            lock.lock();
            m_writing = false;
            m_written.notify_all();
        }
    }

    /// Under a lock of its own: the handler may change a setting, but is not replaced while it runs.
    void report(const QString &reason)
    {
        const std::lock_guard lock(m_handlerMutex);
        if (m_failed) {
            m_failed(reason);
        }
    }

    [[nodiscard]] std::exception_ptr save(const QJsonObject &values) const
    {
        try {
            if (!m_mayReplace) {
                throw MarluneError(
                    QStringLiteral("Pliku ustawień nie można odczytać ani odłożyć: ") + Files::text(m_file));
            }
            Files::makeFolders(m_file.parent_path());
            const QByteArray bytes = QJsonDocument(values).toJson();
            Files::writeAtomically(m_file, bytes);
            return {};
        } catch (const std::exception &) {
            return std::current_exception();
        }
    }

    const std::filesystem::path m_file;
    const bool m_mayReplace;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_written;
    std::optional<QJsonObject> m_pending;
    std::mutex m_handlerMutex; ///< guards m_failed
    std::function<void(QString)> m_failed;
    bool m_writing = false;
    bool m_ending = false;
    std::thread m_thread;
};

Settings::Settings(const std::filesystem::path &file)
{
    Stored stored = readStored(file);
    m_values = std::move(stored.values);
    m_notice = std::move(stored.notice);
    m_writer = std::make_unique<Writer>(std::move(stored.file), stored.mayBeReplaced);
}

Settings::~Settings() = default;

std::filesystem::path Settings::defaultFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return Files::fromText(folder) / "Marlune" / "settings.json";
}

std::optional<QString> Settings::text(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<double> Settings::number(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

QStringList Settings::texts(const QString &key) const
{
    const QJsonArray values = m_values.value(key).toArray();
    QStringList result;
    result.reserve(values.size());
    for (const QJsonValue &value : values) {
        if (value.isString()) {
            result.append(value.toString());
        }
    }
    return result;
}

QMap<QString, QString> Settings::textMap(const QString &key) const
{
    return textsOf(m_values.value(key).toObject(), {});
}

QMap<QString, QString> Settings::textsWithPrefix(const QString &prefix) const
{
    return textsOf(m_values, prefix);
}

void Settings::setText(const QString &key, const QString &value)
{
    set(key, value);
}

void Settings::setNumber(const QString &key, double value)
{
    set(key, value);
}

void Settings::setTexts(const QString &key, const QStringList &value)
{
    set(key, QJsonArray::fromStringList(value));
}

void Settings::insertTexts(const QString &key, const QMap<QString, QString> &entries)
{
    QJsonObject map = m_values.value(key).toObject();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        map.insert(entry.key(), *entry);
    }
    set(key, map);
}

void Settings::remove(const QString &key)
{
    if (m_values.contains(key)) {
        m_values.remove(key);
        m_writer->write(m_values);
    }
}

void Settings::flush()
{
    m_writer->wait();
}

void Settings::onWriteFailure(std::function<void(QString)> handler)
{
    m_writer->setFailureHandler(std::move(handler));
}

void Settings::set(const QString &key, const QJsonValue &value)
{
    m_values.insert(key, value);
    m_writer->write(m_values);
}
