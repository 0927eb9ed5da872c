// What metric handles are, and how the values of one are read and written.
#pragma once

#include "kernel/text.h"
#include "vx/metrics.h"

#include <string_view>

struct tVXMETRIC
{
    char16_t keyPath[vx::kMaxPath]; // below HKEY_CURRENT_USER
    HKEY key;                       // null where opening failed
};

namespace vx {

// The handle, or null for none: -1 names the process's default handle, which nothing sets.
inline tVXMETRIC* MetricOrNull(HVXMETRIC metric)
{
    return metric == reinterpret_cast<HVXMETRIC>(intptr_t(-1)) ? nullptr : metric;
}

// Its key; null without a handle too.
inline HKEY KeyOf(HVXMETRIC metric)
{
    const tVXMETRIC* const record = MetricOrNull(metric);
    return record ? record->key : nullptr;
}

inline HRESULT StatusOfRegistry(LSTATUS error)
{
    return error == ERROR_SUCCESS ? S_OK : HRESULT((error & 0xFFFF) | 0x80070000u);
}

// The name under which a metric is stored: letter 0 for none, digits of the number without its sign.
class ValueName
{
public:
    ValueName(int32_t id, char16_t letter);
    // As its type has it stored.
    static ValueName Stored(int32_t id, uint32_t type);

    const char16_t* Text() const { return text_; }

private:
    char16_t text_[16];
};

// What was read of a value, and how that went.
struct Reading
{
    LSTATUS error;
    DWORD type = REG_NONE;
    DWORD bytes = 0; // read, or needed with ERROR_MORE_DATA

    bool Is(DWORD wanted) const { return error == ERROR_SUCCESS && type == wanted; }
};
Reading ReadValue(HKEY key, const char16_t* name, void* data, DWORD room);

// 0 or E_FAIL; E_FAIL without a key.
HRESULT WriteValue(HKEY key, const char16_t* name, DWORD type, const void* data, DWORD bytes);

// Zeros from `from` to the end; nothing of a null buffer.
void ZeroBehind(void* data, size_t from, size_t size);

} // namespace vx
