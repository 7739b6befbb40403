#include "platform/files/Database.h"

#include <sqlite3.h>

std::unique_ptr<Database> Database::open(const std::filesystem::path &file, std::chrono::milliseconds patience)
{
    sqlite3 *handle = nullptr;
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
    const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
    std::unique_ptr<Database> database(new Database(handle));
    if (!database->note(result)) {
        return nullptr;
    }
    sqlite3_busy_timeout(handle, int(patience.count()));
    // What a file says of itself is not trusted: no function or trigger in it is run.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    const bool isReady
        = database->run("PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0; PRAGMA synchronous = NORMAL");
    return isReady || database->isDamaged() ? std::move(database) : nullptr;
}

Database::~Database()
{
    sqlite3_close_v2(m_handle);
}

bool Database::note(int result)
{
    const int kind = result & 0xFF;
    if (kind == SQLITE_OK || kind == SQLITE_ROW || kind == SQLITE_DONE) {
        return true;
    }
    m_hasFailed = true;
    m_isDamaged = m_isDamaged || kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB || kind == SQLITE_FORMAT
        || kind == SQLITE_ERROR || kind == SQLITE_MISMATCH || kind == SQLITE_TOOBIG;
    return false;
}

bool Database::run(const char *statements)
{
    return note(sqlite3_exec(m_handle, statements, nullptr, nullptr, nullptr));
}

std::int64_t Database::number(const char *query, std::int64_t otherwise)
{
    DatabaseStatement statement(*this, query);
    return statement.next() ? statement.number(0) : otherwise;
}

DatabaseStatement::DatabaseStatement(Database &database, const char *text)
    : m_database(database)
{
    database.note(sqlite3_prepare_v2(database.m_handle, text, -1, &m_statement, nullptr));
}

DatabaseStatement::~DatabaseStatement()
{
    sqlite3_finalize(m_statement);
}

DatabaseStatement &DatabaseStatement::start()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    m_bound = 0;
    return *this;
}

DatabaseStatement &DatabaseStatement::with(std::int64_t value)
{
    m_database.note(sqlite3_bind_int64(m_statement, ++m_bound, value));
    return *this;
}

DatabaseStatement &DatabaseStatement::with(QByteArrayView bytes)
{
    const char *data = bytes.isEmpty() ? "" : bytes.data(); // null bytes would be no value
    m_database.note(sqlite3_bind_blob64(m_statement, ++m_bound, data, sqlite3_uint64(bytes.size()), SQLITE_STATIC));
    return *this;
}

DatabaseStatement &DatabaseStatement::withNothing()
{
    m_database.note(sqlite3_bind_null(m_statement, ++m_bound));
    return *this;
}

bool DatabaseStatement::next()
{
    if (!m_statement) {
        return false;
    }
    const int result = sqlite3_step(m_statement);
    return m_database.note(result) && result == SQLITE_ROW;
}

bool DatabaseStatement::run()
{
    if (!m_statement) {
        return false;
    }
    const bool isDone = m_database.note(sqlite3_step(m_statement));
    sqlite3_reset(m_statement);
    return isDone;
}

std::int64_t DatabaseStatement::number(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_INTEGER ? sqlite3_column_int64(m_statement, column) : 0;
}

QByteArrayView DatabaseStatement::bytes(int column) const
{
    if (sqlite3_column_type(m_statement, column) != SQLITE_BLOB) {
        return {};
    }
    const void *data = sqlite3_column_blob(m_statement, column);
    const int size = sqlite3_column_bytes(m_statement, column);
    return data && size > 0 ? QByteArrayView(static_cast<const char *>(data), size) : QByteArrayView();
}
