// A hive's SQLite file: one connection and its statements.
#pragma once

#include "platform/hive_failure.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace vxplatform {

// Statements that are prepared once and kept. Text in them is UTF-8.
enum class Query
{
    Begin,
    BeginWriting,
    Commit,
    FindKey,      // parent, folded name: id
    HasKey,       // id: 1
    HasSubKey,    // id: 1
    InsertKey,    // parent, folded name, name
    DeleteKey,    // id
    DeleteValues, // key
    ReadValue,    // key, folded name: type, data
    WriteValue,   // key, folded name, name, type, data; no row where the key is gone
    DeleteValue,  // key, folded name
    KeyAt,        // parent, index: name
    ValueAt,      // key, index: name, type, data
    KeyNames,     // parent: name
    ValueSizes,   // key: name, size of data
    Count_,
};

class HiveFile;

// One run of a statement. Bound texts and bytes must live as long as it does.
class Run
{
public:
    Run(HiveFile& file, Query query);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    Run& Bind(int64_t value);
    Run& Bind(std::string_view text);
    Run& Bind(std::span<const uint8_t> bytes);

    // True where there is a row; throws HiveFailure.
    bool Step();
    int64_t Integer(int column) const;
    std::string_view Text(int column) const;
    std::span<const uint8_t> Bytes(int column) const;

private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

class HiveFile
{
public:
    enum class Access
    {
        Existing, // as far as the system allows, and for reading only where it does not allow more
        Created,
        Unchanging, // of a folder that nobody here may write: no locks, no log
    };

    // Throws HiveFailure.
    HiveFile(const std::string& path, Access access);
    ~HiveFile();
    HiveFile(const HiveFile&) = delete;
    HiveFile& operator=(const HiveFile&) = delete;

    bool IsReadOnly() const;
    // Rows that the last writing statement changed.
    int Changes() const;
    void RollBack();

private:
    friend class Run;

    void Check(int code) const;
    void Execute(const char* sql);
    int64_t Version();
    void UseLog();
    void MakeTables();
    sqlite3_stmt* Prepared(Query query);

    sqlite3* database_ = nullptr;
    std::array<sqlite3_stmt*, size_t(Query::Count_)> statements_{};
};

// Takes back on its way out what was not committed.
class Transaction
{
public:
    Transaction(HiveFile& file, Query begin) : file_(file) { Run(file, begin).Step(); }
    ~Transaction()
    {
        if (!committed_)
            file_.RollBack();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit()
    {
        Run(file_, Query::Commit).Step();
        committed_ = true;
    }

private:
    HiveFile& file_;
    bool committed_ = false;
};

} // namespace vxplatform
