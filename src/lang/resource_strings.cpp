// Texts from the string resources of modules, and their cache.
#include "lang/language.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace vx {
namespace {

constexpr uint32_t kStringsOfBlock = 16;
constexpr int32_t kCachedChars = 1024; // with the terminator

struct CachedString
{
    uint32_t id;
    char16_t text[kCachedChars]; // an item of the cache ends behind the terminator
};

// Reads the string of the handle's language from the first place that has it.
int32_t LoadResourceString(HVXLANG handle, uint32_t id, char16_t* dst, int32_t dstChars)
{
    if (handle->hInstLang && handle->useLangInst) {
        const ResourceString found = FindString(handle->hInstLang, id, handle->lcid);
        if (found.length > 0)
            return CopyCut({found.text, found.length}, dst, dstChars);
    }
    if (handle->hInstDefault != handle->hInstLang)
        return LoadStringW(handle->hInstDefault, id, dst, dstChars);
    const ResourceString found = FindString(handle->hInstDefault, id, kUsEnglish);
    return found.length > 0 ? CopyCut({found.text, found.length}, dst, dstChars) : 0;
}

std::span<CachedString*> CachedStrings(const tVXLIST& cache)
{
    return {static_cast<CachedString**>(cache.items), size_t(cache.count)};
}

// The caller holds the lock. Returns the cached text, or the empty one.
const char16_t* LoadIntoCache(HVXLANG handle, uint32_t id, int32_t place)
{
    CachedString item;
    item.id = id;
    const int32_t length = VxLoadString(handle, id, item.text, kCachedChars);
    const size_t bytes = offsetof(CachedString, text) + (size_t(length) + 1) * sizeof(char16_t);
    if (length == 0 ||
        FAILED(VxList_AllocAndInsertItem(handle->stringCache, &item, int32_t(bytes), place, nullptr)))
        return kEmptyText;
    return CachedStrings(*handle->stringCache)[size_t(place)]->text;
}

} // namespace

ResourceString FindString(HMODULE module, uint32_t id, uint32_t lcid)
{
    const HRSRC found =
        FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(id / kStringsOfBlock + 1), WORD(lcid));
    const void* block = found ? LockResource(LoadResource(module, found)) : nullptr;
    if (!block || reinterpret_cast<uintptr_t>(block) % alignof(char16_t) != 0)
        return {};
    // Each string is its length and its characters; the block of a damaged module may end anywhere.
    std::span<const char16_t> rest(static_cast<const char16_t*>(block),
                                   SizeofResource(module, found) / sizeof(char16_t));
    for (uint32_t skipped = 0;; ++skipped) {
        if (rest.empty() || rest[0] >= rest.size())
            return {};
        if (skipped == id % kStringsOfBlock)
            break;
        rest = rest.subspan(size_t(rest[0]) + 1);
    }
    const uint32_t count = rest[0];
    const char16_t* text = &rest[0] + 1;
    if (count > 0 && text[count - 1] == u'\0')
        return {text, count - 1, true};
    return {text, count, count + 1u < rest.size() && text[count] == u'\0'};
}

void ForgetStrings(HVXLANG handle)
{
    VxList_DeleteList(handle->stringCache, 0, -1, 1);
}

int32_t StripMark(char16_t* text, int32_t length)
{
    if (length < 2 || text[0] != u'^' || text[1] != u'*')
        return length;
    std::memmove(text, text + 2, size_t(length - 1) * sizeof(char16_t)); // with the terminator
    return length - 2;
}

} // namespace vx

using namespace vx;

int32_t VxLoadString(HVXLANG handle, uint32_t id, char16_t* dst, int32_t dstChars)
{
    if (dstChars < 1)
        return 0;
    dst[0] = u'\0';
    return StripMark(dst, LoadResourceString(handle, id, dst, dstChars));
}

const char16_t* VxGetString(HVXLANG handle, uint32_t id)
{
    if (!handle->stringCache)
        return kEmptyText;
    const LanguageLock lock(handle);
    const auto cached = CachedStrings(*handle->stringCache);
    const auto place = std::ranges::lower_bound(cached, id, {}, [](const CachedString* s) { return s->id; });
    if (place != cached.end() && (*place)->id == id)
        return (*place)->text;
    return LoadIntoCache(handle, id, int32_t(place - cached.begin()));
}
