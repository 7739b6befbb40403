// Tables in one file, in SQLite's format (sqlite.org/fileformat2.html).
//
// For what can be made anew: nothing here throws, a call says whether it was done. Blocking; a database and its
// statements belong to one thread at a time. A program that is killed leaves the last complete transaction.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;

class Database {
public:
    /// Opens the file, which is made if need be. Null where that is impossible. One that turns out to be no
    /// such file is damaged. Each call waits so long for another's lock, and then fails.
    [[nodiscard]] static std::unique_ptr<Database> open(
        const std::filesystem::path &file, std::chrono::milliseconds patience = std::chrono::seconds(2));
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Runs statements without results, one after the other up to the first that fails.
    bool run(const char *statements);
    /// The only number of the only row; `otherwise` where there is none.
    [[nodiscard]] std::int64_t number(const char *query, std::int64_t otherwise);
    /// Whether some call has found the file not to be what it should.
    [[nodiscard]] bool isDamaged() const { return m_isDamaged; }
    /// Whether some call has failed, damage or not.
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

private:
    friend class DatabaseStatement;
    explicit Database(sqlite3 *handle)
        : m_handle(handle)
    {
    }
    bool note(int result);

    sqlite3 *m_handle;
    bool m_isDamaged = false;
    bool m_hasFailed = false;
};

/// One statement, prepared once and run often: values in the order of its question marks, then next().
class DatabaseStatement {
public:
    /// `database` must outlive it. A statement that does not fit the tables fails at next().
    DatabaseStatement(Database &database, const char *text);
    ~DatabaseStatement();
    DatabaseStatement(const DatabaseStatement &) = delete;
    DatabaseStatement &operator=(const DatabaseStatement &) = delete;

    /// Begins anew, without values.
    DatabaseStatement &start();
    DatabaseStatement &with(std::int64_t value);
    /// The bytes are copied by next(), and must last until then.
    DatabaseStatement &with(QByteArrayView bytes);
    DatabaseStatement &withNothing();
    /// Goes to the next row; false behind the last one, or after a failure.
    bool next();
    /// Runs it for its effect.
    bool run();

    // The present row. A value of another type is 0, or no bytes.
    [[nodiscard]] std::int64_t number(int column) const;
    /// Valid until the next call of next() or start().
    [[nodiscard]] QByteArrayView bytes(int column) const;

private:
    Database &m_database;
    sqlite3_stmt *m_statement = nullptr;
    int m_bound = 0;
};
