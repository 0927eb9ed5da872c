#include "persist/metric.h"

#include "vx/numbers.h"

#include <algorithm>
#include <cstring>

namespace vx {

// The least number has no other sign; it stays as it is, minus included.
ValueName::ValueName(int32_t id, char16_t letter)
{
    char16_t* digits = text_;
    if (letter)
        *digits++ = letter;
    VxLongToText(int32_t(id < 0 ? 0u - uint32_t(id) : uint32_t(id)), digits, 0);
}

ValueName ValueName::Stored(int32_t id, uint32_t type)
{
    switch (type) {
    case REG_SZ:
        return {id, u'S'};
    case REG_BINARY:
        return {id, u'B'};
    case REG_DWORD:
        return {id, u'\0'};
    default:
        return {id, u'Z'};
    }
}

Reading ReadValue(HKEY key, const char16_t* name, void* data, DWORD room)
{
    Reading reading = {ERROR_SUCCESS};
    reading.bytes = room;
    reading.error =
        RegQueryValueExW(key, name, nullptr, &reading.type, static_cast<BYTE*>(data), &reading.bytes);
    return reading;
}

HRESULT WriteValue(HKEY key, const char16_t* name, DWORD type, const void* data, DWORD bytes)
{
    if (!key)
        return E_FAIL;
    const LSTATUS error = RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), bytes);
    return error == ERROR_SUCCESS ? S_OK : E_FAIL;
}

void ZeroBehind(void* data, size_t from, size_t size)
{
    if (data && from < size)
        std::memset(static_cast<uint8_t*>(data) + from, 0, size - from);
}

} // namespace vx

using namespace vx;

HRESULT VxGetMetricAny(HVXMETRIC metric, int32_t id, uint32_t type, void* data, uint32_t size,
                       uint32_t* outSize)
{
    const HKEY key = KeyOf(metric);
    if (!key)
        return E_UNEXPECTED;
    const Reading reading = ReadValue(key, ValueName(id, u'\0').Text(), data, size);
    const bool tooSmall = reading.error == ERROR_MORE_DATA;
    if (!tooSmall && !reading.Is(type))
        return VX_E_ITEM_NOT_FOUND;
    if (outSize)
        *outSize = reading.bytes;
    if (tooSmall)
        return VX_E_BUFFERTOSMALL;
    if (type != REG_SZ)
        return S_OK;

    constexpr char16_t kEnd = u'\0';
    const size_t n = data ? std::min(reading.bytes, size) : 0; // null asks for the size alone
    uint8_t* const text = static_cast<uint8_t*>(data);
    if (n + sizeof kEnd <= size) {
        if (text)
            std::memcpy(text + n, &kEnd, sizeof kEnd);
        return S_OK;
    }
    if (n <= sizeof kEnd || std::memcmp(text + n - sizeof kEnd, &kEnd, sizeof kEnd) == 0)
        return S_OK;
    if (outSize)
        *outSize += sizeof kEnd;
    std::memcpy(text + n - sizeof kEnd, &kEnd, sizeof kEnd);
    return VX_E_BUFFERTOSMALL;
}

// One byte of room: the type is told with too little room as well.
HRESULT VxDoesMetricExist(HVXMETRIC metric, int32_t id, uint32_t type)
{
    const HKEY key = KeyOf(metric);
    if (!key)
        return S_FALSE;
    BYTE room = 0;
    const Reading reading = ReadValue(key, ValueName::Stored(id, type).Text(), &room, sizeof room);
    const bool found = reading.error == ERROR_SUCCESS || reading.error == ERROR_MORE_DATA;
    return found && reading.type == type ? S_OK : S_FALSE;
}

HRESULT VxDeleteMetric(HVXMETRIC metric, int32_t id, uint32_t type)
{
    return VxDeleteMetricUsingName(metric, ValueName::Stored(id, type).Text(), type);
}

HRESULT VxDeleteMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t)
{
    const HKEY key = KeyOf(metric);
    if (!key)
        return S_FALSE;
    return RegDeleteValueW(key, name) == ERROR_SUCCESS ? S_OK : E_FAIL;
}

int32_t VxMetricGetName(int32_t id, uint32_t type, char16_t* dst)
{
    if (!dst)
        return 0;
    const ValueName name = type == REG_DWORD ? ValueName(id, u'D') : ValueName::Stored(id, type);
    const std::u16string_view text(name.Text());
    std::copy_n(text.data(), text.size() + 1, dst);
    return int32_t(text.size());
}
