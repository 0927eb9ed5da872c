#include "platform/hive.h"

#include "platform/case_folding.h"
#include "platform/state_folder.h"
#include "platform/utf8.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace vxplatform {
namespace {

constexpr size_t kMostKeyName = 255, kMostValueName = 16'383; // characters

void AppendUtf8(UChar32 character, std::string& text)
{
    char units[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(units, length, U_IS_SURROGATE(character) ? 0xFFFD : character);
    text.append(units, size_t(length));
}

std::string Folded(std::u16string_view name)
{
    std::string folded;
    for (int32_t i = 0; i < int32_t(name.size());) {
        const UChar32 character = NextFolded(name.data(), i, int32_t(name.size()));
        if (character < 0x80)
            folded += char(character);
        else
            AppendUtf8(character, folded);
    }
    return folded;
}

std::string FoldedValueName(std::u16string_view name)
{
    if (name.size() > kMostValueName)
        throw HiveFailure{ERROR_INVALID_PARAMETER};
    return Folded(name);
}

// The next name of a path; empty at its end. Separators in a row count as one.
std::u16string_view NextName(std::u16string_view& path)
{
    path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    if (name.size() > kMostKeyName)
        throw HiveFailure{ERROR_INVALID_PARAMETER};
    path.remove_prefix(name.size());
    return name;
}

void RefuseBadPath(std::u16string_view path)
{
    if (path.starts_with(u'\\'))
        throw HiveFailure{ERROR_BAD_PATHNAME};
}

void RequireKey(HiveFile& file, KeyId key)
{
    if (!Run(file, Query::HasKey).Bind(key).Step())
        throw HiveFailure{ERROR_KEY_DELETED};
}

std::optional<KeyId> Child(HiveFile& file, KeyId parent, std::u16string_view name)
{
    const std::string folded = Folded(name);
    Run run(file, Query::FindKey);
    if (!run.Bind(parent).Bind(std::string_view(folded)).Step())
        return std::nullopt;
    return run.Integer(0);
}

std::optional<KeyId> Find(HiveFile& file, KeyId from, std::u16string_view path)
{
    RequireKey(file, from);
    KeyId key = from;
    for (std::u16string_view name = NextName(path); !name.empty(); name = NextName(path)) {
        const std::optional<KeyId> child = Child(file, key, name);
        if (!child)
            return std::nullopt;
        key = *child;
    }
    return key;
}

KeyId Insert(HiveFile& file, KeyId parent, std::u16string_view name)
{
    const std::string folded = Folded(name), kept = ToUtf8(name);
    Run(file, Query::InsertKey)
        .Bind(parent)
        .Bind(std::string_view(folded))
        .Bind(std::string_view(kept))
        .Step();
    return *Child(file, parent, name);
}

// Units of UTF-16: one for each character, two for those of four bytes.
DWORD Utf16Length(std::string_view text)
{
    DWORD length = 0;
    for (const char c : text)
        length += ((c & 0xC0) != 0x80) + ((c & 0xF8) == 0xF0);
    return length;
}

// What tells one state of a file from another.
std::string Stamp(const std::string& path)
{
    struct stat found = {};
    if (stat(path.c_str(), &found) != 0)
        return {};
    return std::to_string(found.st_ino) + " " + std::to_string(found.st_size) + " " +
           std::to_string(found.st_mtim.tv_sec) + "." + std::to_string(found.st_mtim.tv_nsec);
}

} // namespace

LSTATUS ValueRequest::Answer(int64_t storedType, std::span<const uint8_t> stored) const
{
    if (type)
        *type = DWORD(storedType);
    const DWORD room = bytes ? *bytes : 0;
    if (bytes)
        *bytes = DWORD(stored.size());
    if (!data)
        return ERROR_SUCCESS;
    if (stored.size() > room)
        return ERROR_MORE_DATA;
    if (!stored.empty())
        std::memcpy(data, stored.data(), stored.size());
    return ERROR_SUCCESS;
}

LSTATUS NameRequest::Answer(std::string_view stored) const
{
    const std::u16string text = ToUtf16(stored);
    const DWORD room = *characters;
    if (text.size() >= room) {
        *characters = DWORD(text.size()) + 1;
        return ERROR_MORE_DATA;
    }
    std::copy_n(text.c_str(), text.size() + 1, name);
    *characters = DWORD(text.size());
    return ERROR_SUCCESS;
}

bool Hive::IsWritable()
{
    const std::lock_guard lock(mutex_);
    const HiveFile* const file = Existing();
    return !file || !file->IsReadOnly();
}

KeyId Hive::FindKey(KeyId from, std::u16string_view path)
{
    RefuseBadPath(path);
    const std::lock_guard lock(mutex_);
    HiveFile* const file = Existing();
    if (!file) {
        if (NextName(path).empty())
            return from;
        throw HiveFailure{ERROR_FILE_NOT_FOUND};
    }
    const Transaction transaction(*file, Query::Begin);
    const std::optional<KeyId> found = Find(*file, from, path);
    if (!found)
        throw HiveFailure{ERROR_FILE_NOT_FOUND};
    return *found;
}

// Most keys that are asked for exist: only who makes one waits for other writers.
Hive::Made Hive::MakeKey(KeyId from, std::u16string_view path)
{
    try {
        return {FindKey(from, path), false};
    } catch (const HiveFailure& failure) {
        if (failure.code != ERROR_FILE_NOT_FOUND)
            throw;
    }
    const std::lock_guard lock(mutex_);
    HiveFile& file = Writing();
    Transaction transaction(file, Query::BeginWriting);
    RequireKey(file, from);
    Made made = {from, false};
    for (std::u16string_view name = NextName(path); !name.empty(); name = NextName(path)) {
        const std::optional<KeyId> child = Child(file, made.key, name);
        made = child ? Made{*child, false} : Made{Insert(file, made.key, name), true};
    }
    transaction.Commit();
    return made;
}

LSTATUS Hive::DeleteKey(KeyId from, std::u16string_view path)
{
    RefuseBadPath(path);
    const std::lock_guard lock(mutex_);
    if (!Existing())
        return ERROR_FILE_NOT_FOUND;
    HiveFile& file = Writing();
    Transaction transaction(file, file.IsReadOnly() ? Query::Begin : Query::BeginWriting);
    const std::optional<KeyId> key = Find(file, from, path);
    if (!key)
        return ERROR_FILE_NOT_FOUND;
    if (*key == kRootKey || Run(file, Query::HasSubKey).Bind(*key).Step())
        return ERROR_ACCESS_DENIED;
    Run(file, Query::DeleteValues).Bind(*key).Step();
    Run(file, Query::DeleteKey).Bind(*key).Step();
    transaction.Commit();
    return ERROR_SUCCESS;
}

// A single statement is a transaction by itself.
LSTATUS Hive::ReadValue(KeyId key, std::u16string_view name, const ValueRequest& request)
{
    const std::string folded = FoldedValueName(name);
    const std::lock_guard lock(mutex_);
    HiveFile* const file = Existing();
    if (!file)
        return ERROR_FILE_NOT_FOUND;
    Run run(*file, Query::ReadValue);
    if (run.Bind(key).Bind(std::string_view(folded)).Step())
        return request.Answer(run.Integer(0), run.Bytes(1));
    RequireKey(*file, key);
    return ERROR_FILE_NOT_FOUND;
}

void Hive::WriteValue(KeyId key, std::u16string_view name, DWORD type, std::span<const uint8_t> data)
{
    const std::string folded = FoldedValueName(name), kept = ToUtf8(name);
    const std::lock_guard lock(mutex_);
    HiveFile& file = Writing();
    Run run(file, Query::WriteValue);
    run.Bind(key).Bind(std::string_view(folded)).Bind(std::string_view(kept)).Bind(type).Bind(data).Step();
    if (file.Changes() == 0)
        throw HiveFailure{ERROR_KEY_DELETED};
}

LSTATUS Hive::DeleteValue(KeyId key, std::u16string_view name)
{
    const std::string folded = FoldedValueName(name);
    const std::lock_guard lock(mutex_);
    if (!Existing())
        return ERROR_FILE_NOT_FOUND;
    HiveFile& file = Writing();
    Run(file, Query::DeleteValue).Bind(key).Bind(std::string_view(folded)).Step();
    if (file.Changes() != 0)
        return ERROR_SUCCESS;
    RequireKey(file, key);
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS Hive::KeyAt(KeyId key, DWORD index, const NameRequest& name)
{
    const std::lock_guard lock(mutex_);
    HiveFile* const file = Existing();
    if (!file)
        return ERROR_NO_MORE_ITEMS;
    Run run(*file, Query::KeyAt);
    if (run.Bind(key).Bind(int64_t(index)).Step())
        return name.Answer(run.Text(0));
    RequireKey(*file, key);
    return ERROR_NO_MORE_ITEMS;
}

LSTATUS Hive::ValueAt(KeyId key, DWORD index, const NameRequest& name, const ValueRequest& request)
{
    const std::lock_guard lock(mutex_);
    HiveFile* const file = Existing();
    if (!file)
        return ERROR_NO_MORE_ITEMS;
    Run run(*file, Query::ValueAt);
    if (run.Bind(key).Bind(int64_t(index)).Step()) {
        const LSTATUS named = name.Answer(run.Text(0)), told = request.Answer(run.Integer(1), run.Bytes(2));
        return named ? named : told;
    }
    RequireKey(*file, key);
    return ERROR_NO_MORE_ITEMS;
}

KeyFacts Hive::Facts(KeyId key)
{
    const std::lock_guard lock(mutex_);
    KeyFacts facts;
    HiveFile* const file = Existing();
    if (!file)
        return facts;
    const Transaction transaction(*file, Query::Begin);
    RequireKey(*file, key);
    Run names(*file, Query::KeyNames);
    for (names.Bind(key); names.Step(); ++facts.subKeys)
        facts.longestSubKey = std::max(facts.longestSubKey, Utf16Length(names.Text(0)));
    Run sizes(*file, Query::ValueSizes);
    for (sizes.Bind(key); sizes.Step(); ++facts.values) {
        facts.longestValueName = std::max(facts.longestValueName, Utf16Length(sizes.Text(0)));
        facts.mostBytes = std::max(facts.mostBytes, DWORD(sizes.Integer(1)));
    }
    return facts;
}

void Hive::CloseAndHold()
{
    mutex_.lock();
    file_.reset();
}

std::string Hive::Path() const
{
    const std::string& folder = StateFolder();
    if (folder.empty())
        throw HiveFailure{ERROR_PATH_NOT_FOUND};
    return folder + "/" + fileName_;
}

HiveFile* Hive::Existing()
{
    if (file_ && !unchanging_)
        return file_.get();
    const std::string path = Path();
    if (unchanging_ && unchanging_ != Stamp(path))
        file_.reset();
    std::error_code ignored;
    if (!file_ && std::filesystem::exists(path, ignored))
        Open(path);
    return file_.get();
}

HiveFile& Hive::Writing()
{
    if (HiveFile* const file = Existing())
        return *file;
    const std::string path = Path();
    std::error_code error;
    std::filesystem::create_directories(StateFolder(), error);
    if (error)
        throw HiveFailure{ERROR_ACCESS_DENIED};
    file_ = std::make_unique<HiveFile>(path, HiveFile::Access::Created);
    return *file_;
}

// A log cannot be kept in a folder that may not be written; then the file alone is read.
void Hive::Open(const std::string& path)
{
    unchanging_.reset();
    try {
        file_ = std::make_unique<HiveFile>(path, HiveFile::Access::Existing);
    } catch (const HiveFailure& failure) {
        if (failure.code != ERROR_ACCESS_DENIED)
            throw;
        std::string stamp = Stamp(path);
        file_ = std::make_unique<HiveFile>(path, HiveFile::Access::Unchanging);
        unchanging_ = std::move(stamp);
    }
}

} // namespace vxplatform
