#include "platform/hive_file.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <sqlite3.h>
#include <thread>

namespace vxplatform {
namespace {

using namespace std::chrono_literals;

constexpr int64_t kVersion = 1; // of the tables
constexpr std::chrono::milliseconds kPatience = 10s;

// Ids are never used again, so that the handle of a deleted key names no other. Folded names are UTF-8,
// whose bytes sort as the characters do. The root is key 1.
constexpr char kTables[] = R"(
    CREATE TABLE keys (id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL,
                       folded TEXT NOT NULL, name TEXT NOT NULL, UNIQUE (parent, folded));
    CREATE TABLE entries (key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL,
                          type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY (key, folded)) WITHOUT ROWID;
    INSERT INTO keys VALUES (1, 0, '', '');
    PRAGMA user_version = 1;
)";

constexpr const char* kQueries[] = {
    "BEGIN",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "SELECT id FROM keys WHERE parent = ?1 AND folded = ?2",
    "SELECT 1 FROM keys WHERE id = ?1",
    "SELECT 1 FROM keys WHERE parent = ?1",
    "INSERT INTO keys (parent, folded, name) VALUES (?1, ?2, ?3)",
    "DELETE FROM keys WHERE id = ?1",
    "DELETE FROM entries WHERE key = ?1",
    "SELECT type, data FROM entries WHERE key = ?1 AND folded = ?2",
    ("INSERT INTO entries SELECT ?1, ?2, ?3, ?4, ?5 WHERE EXISTS (SELECT 1 FROM keys WHERE id = ?1) "
     "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data"),
    "DELETE FROM entries WHERE key = ?1 AND folded = ?2",
    "SELECT name FROM keys WHERE parent = ?1 ORDER BY folded LIMIT 1 OFFSET ?2",
    "SELECT name, type, data FROM entries WHERE key = ?1 ORDER BY folded LIMIT 1 OFFSET ?2",
    "SELECT name FROM keys WHERE parent = ?1",
    "SELECT name, length(data) FROM entries WHERE key = ?1",
};
static_assert(std::size(kQueries) == size_t(Query::Count_), "one text for each query");

LSTATUS CannotOpen(int systemError)
{
    const bool refused = systemError == EACCES || systemError == EPERM || systemError == EROFS;
    return refused ? ERROR_ACCESS_DENIED : ERROR_REGISTRY_IO_FAILED;
}

LSTATUS ErrorOf(int code, sqlite3* database)
{
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return ERROR_BUSY;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return ERROR_ACCESS_DENIED;
    case SQLITE_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR: // the tables are not those that the statements know
        return ERROR_BADDB;
    case SQLITE_TOOBIG:
        return ERROR_INVALID_PARAMETER;
    case SQLITE_CANTOPEN:
        return CannotOpen(database ? sqlite3_system_errno(database) : 0);
    default:
        return ERROR_REGISTRY_IO_FAILED;
    }
}

// As a URI, where some characters have a meaning of their own.
std::string UnchangingUri(const std::string& path)
{
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : path) {
        if (c == '%' || c == '?' || c == '#')
            uri += {'%', kHex[c >> 4], kHex[c & 15]};
        else
            uri += c;
    }
    return uri + "?immutable=1";
}

int OpenFlags(HiveFile::Access access)
{
    switch (access) {
    case HiveFile::Access::Created:
        return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    case HiveFile::Access::Unchanging:
        return SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
    default:
        return SQLITE_OPEN_READWRITE;
    }
}

} // namespace

Run::Run(HiveFile& file, Query query) : statement_(file.Prepared(query)) {}

Run::~Run()
{
    sqlite3_reset(statement_);
}

Run& Run::Bind(int64_t value)
{
    sqlite3_bind_int64(statement_, ++bound_, value);
    return *this;
}

Run& Run::Bind(std::string_view text)
{
    sqlite3_bind_text(statement_, ++bound_, text.data(), int(text.size()), SQLITE_STATIC);
    return *this;
}

// A null pointer would be bound as NULL, which is no value.
Run& Run::Bind(std::span<const uint8_t> bytes)
{
    const void* const data = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
    const int code = sqlite3_bind_blob64(statement_, ++bound_, data, bytes.size(), SQLITE_STATIC);
    if (code != SQLITE_OK)
        throw HiveFailure{ErrorOf(code, nullptr)};
    return *this;
}

bool Run::Step()
{
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw HiveFailure{ErrorOf(code, sqlite3_db_handle(statement_))};
    return code == SQLITE_ROW;
}

int64_t Run::Integer(int column) const
{
    return sqlite3_column_int64(statement_, column);
}

std::string_view Run::Text(int column) const
{
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {text ? text : "", size_t(sqlite3_column_bytes(statement_, column))};
}

std::span<const uint8_t> Run::Bytes(int column) const
{
    const auto* const data = static_cast<const uint8_t*>(sqlite3_column_blob(statement_, column));
    return {data, size_t(sqlite3_column_bytes(statement_, column))};
}

HiveFile::HiveFile(const std::string& path, Access access)
{
    const bool unchanging = access == Access::Unchanging;
    const std::string name = unchanging ? UnchangingUri(path) : path;
    const int code =
        sqlite3_open_v2(name.c_str(), &database_, OpenFlags(access) | SQLITE_OPEN_NOMUTEX, nullptr);
    try {
        Check(code);
        sqlite3_busy_timeout(database_, int(kPatience.count()));
        if (Version() == 0)
            MakeTables();
        if (Version() != kVersion)
            throw HiveFailure{ERROR_BADDB};
        Execute("PRAGMA synchronous = NORMAL");
    } catch (...) {
        sqlite3_close(database_);
        throw;
    }
}

HiveFile::~HiveFile()
{
    for (sqlite3_stmt* statement : statements_)
        sqlite3_finalize(statement);
    sqlite3_close(database_);
}

bool HiveFile::IsReadOnly() const
{
    return sqlite3_db_readonly(database_, "main") == 1;
}

int HiveFile::Changes() const
{
    return sqlite3_changes(database_);
}

void HiveFile::RollBack()
{
    sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
}

void HiveFile::Check(int code) const
{
    if (code != SQLITE_OK)
        throw HiveFailure{ErrorOf(code, database_)};
}

void HiveFile::Execute(const char* sql)
{
    Check(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr));
}

int64_t HiveFile::Version()
{
    int64_t version = 0;
    const auto take = [](void* to, int, char** columns, char**) {
        *static_cast<int64_t*>(to) = std::atoll(columns[0]);
        return 0;
    };
    Check(sqlite3_exec(database_, "PRAGMA user_version", take, &version, nullptr));
    return version;
}

// The change to a write-ahead log does not wait for others by itself.
void HiveFile::UseLog()
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        const int code = sqlite3_exec(database_, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
        if ((code & 0xFF) != SQLITE_BUSY || std::chrono::steady_clock::now() > end)
            return Check(code);
        std::this_thread::sleep_for(2ms);
    }
}

// Others may be at it at the same time.
void HiveFile::MakeTables()
{
    UseLog();
    Transaction transaction(*this, Query::BeginWriting);
    if (Version() == 0)
        Execute(kTables);
    transaction.Commit();
}

sqlite3_stmt* HiveFile::Prepared(Query query)
{
    sqlite3_stmt*& statement = statements_[size_t(query)];
    if (!statement)
        Check(sqlite3_prepare_v3(database_, kQueries[size_t(query)], -1, SQLITE_PREPARE_PERSISTENT,
                                 &statement, nullptr));
    return statement;
}

} // namespace vxplatform
