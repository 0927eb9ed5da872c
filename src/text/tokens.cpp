#include "text/tokens.h"

#include "vx/platform/strings.h"
#include "vx/print.h"

#include <cstring>
#include <limits>

namespace vx {
namespace {

constexpr int32_t kSlotStep = 16;
constexpr size_t kValueAlignment = 4; // bytes

tVXLIST* g_printTokens; // sorted by name; the kernel's start and end write it

int32_t CompareNames(int64_t, const void* name, const void* item)
{
    return lstrcmpiW(static_cast<const char16_t*>(name), static_cast<const PrintToken*>(item)->name);
}

PrintToken* TokenAt(int32_t index)
{
    return static_cast<PrintToken**>(g_printTokens->items)[index];
}

int32_t FindToken(const char16_t* name)
{
    return VxList_FindSortedItemRange(g_printTokens, name, 0, -1, CompareNames);
}

size_t BytesOf(std::u16string_view text)
{
    return (text.size() + 1) * sizeof(char16_t);
}

// The token's texts are stored behind its record, with their terminators.
void Fill(PrintToken& token, std::u16string_view name, std::u16string_view value)
{
    const size_t nameBytes = (BytesOf(name) + kValueAlignment - 1) / kValueAlignment * kValueAlignment;
    token.name = reinterpret_cast<char16_t*>(&token + 1);
    token.value = token.name + nameBytes / sizeof(char16_t);
    token.valueLength = uint32_t(value.size());
    std::memcpy(token.name, name.data(), BytesOf(name));
    std::memcpy(token.value, value.data(), BytesOf(value));
}

bool Insert(const char16_t* name, const char16_t* value)
{
    const size_t bytes = sizeof(PrintToken) + kValueAlignment + BytesOf(name) + BytesOf(value);
    if (bytes > size_t(std::numeric_limits<int32_t>::max()))
        return false;
    const int32_t place = VxList_FindSortedInsertIndexRange(g_printTokens, name, 0, -1, CompareNames);
    int32_t index = -1;
    if (FAILED(VxList_AllocAndInsertItem(g_printTokens, nullptr, int32_t(bytes), place, &index)))
        return false;
    Fill(*TokenAt(index), name, value);
    return true;
}

} // namespace

bool CreatePrintTokens()
{
    return g_printTokens ||
           SUCCEEDED(VxList_CreateExZ(&g_printTokens, sizeof(PrintToken*), kSlotStep, kSlotStep,
                                      VXLIST_OPT_LOCKED | VXLIST_OPT_HEAPITEMS, nullptr, 0, nullptr));
}

void DestroyPrintTokens()
{
    VxList_Destroy(g_printTokens);
    g_printTokens = nullptr;
}

TokenLock::TokenLock() : list_(g_printTokens)
{
    if (list_)
        EnterCriticalSection(&list_->lock);
}

TokenLock::~TokenLock()
{
    if (list_)
        LeaveCriticalSection(&list_->lock);
}

TokenLookup::TokenLookup(const char16_t* name)
{
    const int32_t index = lock_ ? FindToken(name) : -1;
    if (index >= 0)
        token_ = TokenAt(index);
}

} // namespace vx

using namespace vx;

int32_t VxPrintF_AddToken(const char16_t* name, const char16_t* value)
{
    const TokenLock lock;
    if (!lock)
        return 0;
    const int32_t old = FindToken(name);
    if (old >= 0)
        VxList_DeleteList(g_printTokens, old, 1, 0);
    return Insert(name, value);
}

int32_t VxPrintF_DeleteToken(const char16_t* name)
{
    const TokenLock lock;
    const int32_t index = lock ? FindToken(name) : -1;
    return index >= 0 && SUCCEEDED(VxList_DeleteList(g_printTokens, index, 1, 1));
}
