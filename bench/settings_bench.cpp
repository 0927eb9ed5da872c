// Settings, set against the SQLite statement that a host would write for itself: in a file of its own, whose
// one table has the settings' names as its key.
#include "families.h"
#include "folder.h"
#include "vx/metrics.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

namespace vxbench {
namespace {

constexpr int kCalls = 100; // in one call of a contender
constexpr double kSettingsGoal = 1.5;

// The state folder, and the metrics that are read and written.
class Settings
{
public:
    Settings()
    {
        setenv("VX_STATE_DIR", folder_.Path().c_str(), 1);
        VxMetric_Open(&metric_, u"Bench", 0x01000000, nullptr);
    }
    ~Settings() { VxMetric_Close(metric_); }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    HVXMETRIC Metric() const { return metric_; }
    std::string File(const char* name) const { return (folder_.Path() / name).string(); }

    // The registry asks for its folder once, so that there is one in all.
    static Settings& Get()
    {
        static Settings settings;
        return settings;
    }

private:
    Folder folder_;
    HVXMETRIC metric_ = nullptr;
};

class Statement
{
public:
    explicit Statement(const char* sql)
    {
        const char* const kStart = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                                   "CREATE TABLE IF NOT EXISTS settings (name TEXT PRIMARY KEY, type, data)"
                                   " WITHOUT ROWID";
        const std::string file = Settings::Get().File("bare.db");
        if (sqlite3_open_v2(file.c_str(), &database_, kFlags, nullptr) ||
            sqlite3_exec(database_, kStart, nullptr, nullptr, nullptr) ||
            sqlite3_prepare_v3(database_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr))
            throw std::runtime_error("no bare settings");
    }
    ~Statement()
    {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void Write(uint32_t value)
    {
        sqlite3_bind_text(statement_, 1, "5", 1, SQLITE_STATIC);
        sqlite3_bind_blob(statement_, 2, &value, sizeof value, SQLITE_STATIC);
        sqlite3_step(statement_);
        sqlite3_reset(statement_);
    }
    uint32_t Read()
    {
        uint32_t value = 0;
        sqlite3_bind_text(statement_, 1, "5", 1, SQLITE_STATIC);
        if (sqlite3_step(statement_) == SQLITE_ROW && sqlite3_column_int(statement_, 0) == int(REG_DWORD))
            std::memcpy(&value, sqlite3_column_blob(statement_, 1), sizeof value);
        sqlite3_reset(statement_);
        return value;
    }

private:
    static constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;

    sqlite3* database_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

constexpr char kWrite[] = "INSERT OR REPLACE INTO settings VALUES (?1, 4, ?2)";
constexpr char kRead[] = "SELECT type, data FROM settings WHERE name = ?1";

template <class Do>
Call Often(Do once)
{
    return [once] {
        for (int i = 0; i < kCalls; ++i)
            once(uint32_t(i));
    };
}

void ReadNumber(Work& work)
{
    const HVXMETRIC metric = Settings::Get().Metric();
    VxSetMetric(metric, 5, 7);
    // It stays open, so that the bare file keeps its log as the other does.
    work.Own(std::make_unique<Statement>(kWrite))->Write(7);
    Statement& bare = *work.Own(std::make_unique<Statement>(kRead));
    work.Vx(Often([=](uint32_t) { benchmark::DoNotOptimize(VxGetMetricEx(metric, 5, 0, 0, 0)); }));
    work.Floor("the bare SQLite statement", Often([&](uint32_t) { benchmark::DoNotOptimize(bare.Read()); }),
               kSettingsGoal);
}

void WriteNumber(Work& work)
{
    const HVXMETRIC metric = Settings::Get().Metric();
    Statement& bare = *work.Own(std::make_unique<Statement>(kWrite));
    work.Vx(Often([=](uint32_t value) { VxSetMetric(metric, 5, value); }));
    work.Floor("the bare SQLite statement", Often([&](uint32_t value) { bare.Write(value); }), kSettingsGoal);
}

} // namespace

void AddSettingsWorks(Suite& suite)
{
    suite.Add("settings: read a number", {{kCalls, 0}}, ReadNumber);
    suite.Add("settings: write a number", {{kCalls, 0}}, WriteNumber);
}

} // namespace vxbench
