// Texts from tables that hold one in each of several languages.
#include "lang/language.h"
#include "lang/strings.h"
#include "vx/internationals.h"
#include "vx/platform/locale.h"

#include <algorithm>
#include <atomic>
#include <iterator>

namespace vx {
namespace {

constexpr uintptr_t kLastId = 0xFFFF; // numbers of resources; addresses lie above

// The slot of a language, that of English where there is none.
int32_t SlotOfLanguage(uint32_t lcid)
{
    const uint32_t wanted = VxLang_GetConditionedLCID(lcid);
    const auto* found = std::ranges::find(strings::kSlotLcids, wanted, VxLang_GetConditionedLCID);
    return found == std::end(strings::kSlotLcids) ? 1 : int32_t(found - strings::kSlotLcids) + 1;
}

// Threads that find it unknown at once all work out the same.
int32_t SlotOf(HVXLANG handle)
{
    const std::atomic_ref known(handle->langSlot);
    int32_t slot = known.load(std::memory_order_relaxed);
    if (slot < 1) {
        slot = SlotOfLanguage(handle->lcid ? handle->lcid : GetUserDefaultUILanguage());
        known.store(slot, std::memory_order_relaxed);
    }
    return slot;
}

// Puts the text that a number stands for in its place, or the English one. Only a text that is stored with
// its terminator can be used where it stands.
const char16_t* Resolve(HVXLANG handle, vxlang_t& table, int32_t slot, uint32_t id)
{
    const ResourceString found = FindString(handle->hInstLang, id, strings::kSlotLcids[slot - 1]);
    const char16_t* text = found.terminated ? found.text : table.text[0];
    std::atomic_ref(table.text[slot - 1]).store(text, std::memory_order_release);
    return text;
}

} // namespace
} // namespace vx

using namespace vx;

const char16_t* VxGetString(HVXLANG handle, vxlang_t* table)
{
    const int32_t slot = std::max(1, std::min({SlotOf(handle), table->count & 0xFF, VXLANG_SLOTS}));
    const char16_t* text = std::atomic_ref(table->text[slot - 1]).load(std::memory_order_acquire);
    const auto value = reinterpret_cast<uintptr_t>(text);
    return value > kLastId ? text : Resolve(handle, *table, slot, uint32_t(value));
}

int32_t VxLoadString(HVXLANG handle, vxlang_t* table, char16_t* dst, int32_t dstChars)
{
    return StripMark(dst, CopyCut(VxGetString(handle, table), dst, dstChars));
}

int32_t IsVXLANGSTRINGID(HVXLANG, const char16_t* text)
{
    const auto value = reinterpret_cast<uintptr_t>(text);
    return value > kLastId && value % 4 == 0 && *text == VXLANG_MARK;
}

const char16_t* VxGetStringSmart(HVXLANG handle, const char16_t* text)
{
    const auto value = reinterpret_cast<uintptr_t>(text);
    if (!text)
        return nullptr;
    if (value <= kLastId)
        return VxGetString(handle, uint32_t(value));
    if (IsVXLANGSTRINGID(handle, text))
        return VxGetString(handle, reinterpret_cast<vxlang_t*>(const_cast<char16_t*>(text)));
    return text;
}
