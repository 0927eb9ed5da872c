// The language handle's record.
#pragma once

#include "kernel/text.h"
#include "vx/lang.h"
#include "vx/list.h"

#include <string_view>

struct VxLanguage
{
    HMODULE hInstDefault;  // the module that the handle was opened on; its owner frees it
    int32_t lockValid;     // whether lock was made
    CRITICAL_SECTION lock; // guards tempPos and stringCache
    uint32_t tempCapacity; // characters of the ring
    uint32_t tempReserve;  // a request finds at least so many characters, or goes back to the start
    uint32_t tempPos;      // next free character of the ring; even
    char16_t* tempBuffer;  // the ring
    int32_t useLangInst;   // 1 where the language is not English
    HMODULE hInstLang;     // where texts in the language are looked for
    uint32_t lcid;         // 0: none yet
    int32_t langSlot;      // of the language in tables, 1 to 18; 0: to be worked out
    tVXLIST* stringCache;  // CachedString items, sorted by number
    HMODULE languageFile;  // loaded with the handle; null if there is none
    HMODULE changedInst;   // the last of VxLang_ChangeLangInst; null if none
};

namespace vx {

// Holds a handle's lock.
class LanguageLock
{
public:
    explicit LanguageLock(HVXLANG handle) : handle_(handle) { EnterCriticalSection(&handle_->lock); }
    ~LanguageLock() { LeaveCriticalSection(&handle_->lock); }
    LanguageLock(const LanguageLock&) = delete;
    LanguageLock& operator=(const LanguageLock&) = delete;

private:
    HVXLANG handle_;
};

inline constexpr uint32_t kPrimaryLanguageMask = 0x3FF;
inline constexpr uint32_t kUsEnglish = 0x0409;

// A string in the resources of a module. Its text has no terminator of its own, but where nothing else
// follows it in the block one may be read behind it.
struct ResourceString
{
    const char16_t* text = nullptr; // null where there is none
    uint32_t length = 0;            // a terminator that is stored with it is not counted
    bool terminated = false;        // whether a zero stands behind it
};
ResourceString FindString(HMODULE module, uint32_t id, uint32_t lcid);

// Empties the cache of strings. The caller holds the lock.
void ForgetStrings(HVXLANG handle);

// What a text that is missing is.
inline constexpr char16_t kEmptyText[] = u"";

// Takes "^*" from the start of a text that was read for a person. Returns the length that is left.
int32_t StripMark(char16_t* text, int32_t length);

} // namespace vx
