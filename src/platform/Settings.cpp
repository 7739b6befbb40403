#include "platform/Settings.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

constexpr std::int64_t largestFile = 256'000'000;

QJsonObject readValues(const std::filesystem::path &file)
{
    const std::optional<QByteArray> bytes = Files::readBelow(file, largestFile);
    if (!bytes && !Files::exists(file)) {
        return {};
    }
    // A file that is there but cannot be read is set aside as a damaged one is: the next change would replace it.
    const QJsonDocument document = QJsonDocument::fromJson(bytes.value_or(QByteArray()));
    if (document.isObject()) {
        return document.object();
    }
    std::filesystem::path aside = file;
    aside += ".damaged-" + QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmsszzz")).toStdString();
    std::error_code ignored; // a file that cannot be set aside is replaced by the next change all the same
    std::filesystem::rename(file, aside, ignored);
    return {};
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
    explicit Writer(std::filesystem::path file)
        : m_file(std::move(file))
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
        const std::lock_guard lock(m_mutex);
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
            lock.lock();
            if (failure && m_failed) {
                m_failed(describeFailure(failure));
            }
            m_writing = false;
            m_written.notify_all();
        }
    }

    [[nodiscard]] std::exception_ptr save(const QJsonObject &values) const
    {
        try {
            std::filesystem::create_directories(m_file.parent_path());
            const QByteArray bytes = QJsonDocument(values).toJson();
            Files::writeAtomically(m_file, {bytes.constData(), std::size_t(bytes.size())});
            return {};
        } catch (const std::exception &) {
            return std::current_exception();
        }
    }

    const std::filesystem::path m_file;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_written;
    std::optional<QJsonObject> m_pending;
    std::function<void(QString)> m_failed;
    bool m_writing = false;
    bool m_ending = false;
    std::thread m_thread;
};

Settings::Settings(std::filesystem::path file)
    : m_values(readValues(file))
    , m_writer(std::make_unique<Writer>(std::move(file)))
{
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

void Settings::setTextMap(const QString &key, const QMap<QString, QString> &value)
{
    QJsonObject object;
    for (auto entry = value.begin(); entry != value.end(); ++entry) {
        object.insert(entry.key(), entry.value());
    }
    set(key, object);
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
