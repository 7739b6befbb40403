// The program's settings: texts, numbers, lists and maps of texts under text keys.
//
// One JSON file. A change is seen by the next read at once and is handed in the same moment to a writer thread,
// which replaces the file atomically; the UI thread never waits for the disk. Use from one thread. A file that is
// damaged is set aside under another name, never overwritten; where that fails, or where a file that is there cannot be
// read, nothing is written and each change reports it.
#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

class Settings {
public:
    /// Reads `file` if it is there. Nothing is written before the first change.
    explicit Settings(const std::filesystem::path &file);
    /// Returns when the last change is on the disk.
    ~Settings();
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;

    /// Marlune/settings.json in the user's configuration folder (XDG base directories).
    [[nodiscard]] static std::filesystem::path defaultFile();

    /// Absent, or empty for the list and the map, where the key is missing or holds another type.
    [[nodiscard]] std::optional<QString> text(const QString &key) const;
    [[nodiscard]] std::optional<double> number(const QString &key) const;
    [[nodiscard]] QStringList texts(const QString &key) const;
    [[nodiscard]] QMap<QString, QString> textMap(const QString &key) const;
    /// All texts whose keys begin with `prefix`, by key.
    [[nodiscard]] QMap<QString, QString> textsWithPrefix(const QString &prefix) const;

    void setText(const QString &key, const QString &value);
    void setNumber(const QString &key, double value);
    void setTexts(const QString &key, const QStringList &value);
    /// Adds to the map of this key, or replaces there; quick for a large map too.
    void insertTexts(const QString &key, const QMap<QString, QString> &entries);
    void remove(const QString &key);

    /// What the user should know of the file as it was found; empty if all is well.
    [[nodiscard]] QString notice() const { return m_notice; }
    /// Waits until the last change is on the disk.
    void flush();
    /// Called on the writer thread with a reason when a change could not be written; the values stay in memory and
    /// go out with the next change.
    void onWriteFailure(std::function<void(QString)> handler);

private:
    class Writer;
    void set(const QString &key, const QJsonValue &value);

    QJsonObject m_values;
    QString m_notice;
    std::unique_ptr<Writer> m_writer;
};
