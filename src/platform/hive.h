// A hive: keys by number, and the values below them, kept in a file of the state folder.
#pragma once

#include "platform/hive_file.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vxplatform {

using KeyId = int64_t;
constexpr KeyId kRootKey = 1;

// What is asked of a value, and where it goes; each may be null, bytes only where data is.
struct ValueRequest
{
    DWORD* type;
    BYTE* data;
    DWORD* bytes;

    // ERROR_MORE_DATA where data has too little room.
    LSTATUS Answer(int64_t storedType, std::span<const uint8_t> stored) const;
};

struct NameRequest
{
    WCHAR* name;
    DWORD* characters;

    LSTATUS Answer(std::string_view stored) const;
};

struct KeyFacts
{
    DWORD subKeys = 0, longestSubKey = 0;
    DWORD values = 0, longestValueName = 0, mostBytes = 0;
};

// All members lock the hive, run as one transaction, and throw HiveFailure for what is not returned. A
// hive without a file is empty.
class Hive
{
public:
    explicit Hive(const char* fileName) : fileName_(fileName) {}

    // False where there is a file that this process may not write.
    bool IsWritable();

    // Throws ERROR_FILE_NOT_FOUND where there is no such key.
    KeyId FindKey(KeyId from, std::u16string_view path);
    struct Made
    {
        KeyId key;
        bool isNew;
    };
    Made MakeKey(KeyId from, std::u16string_view path);
    LSTATUS DeleteKey(KeyId from, std::u16string_view path);

    LSTATUS ReadValue(KeyId key, std::u16string_view name, const ValueRequest& request);
    void WriteValue(KeyId key, std::u16string_view name, DWORD type, std::span<const uint8_t> data);
    LSTATUS DeleteValue(KeyId key, std::u16string_view name);

    LSTATUS KeyAt(KeyId key, DWORD index, const NameRequest& name);
    LSTATUS ValueAt(KeyId key, DWORD index, const NameRequest& name, const ValueRequest& request);
    KeyFacts Facts(KeyId key);

    // A connection must not be carried over a fork, not even to be closed: SQLite would take locks of
    // the parent's for its own. It is closed before and opened anew by the next call on either side.
    void CloseAndHold();
    void Release() { mutex_.unlock(); }

private:
    std::string Path() const;
    HiveFile* Existing(); // null where there is none
    HiveFile& Writing();
    void Open(const std::string& path);

    const char* fileName_;
    std::mutex mutex_;
    std::unique_ptr<HiveFile> file_;
    // What the file looked like that is read without locks: it is opened anew once it looks otherwise.
    std::optional<std::string> unchanging_;
};

} // namespace vxplatform
