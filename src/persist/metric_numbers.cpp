#include "persist/metric.h"

#include <algorithm>
#include <optional>

namespace {

using namespace vx;

std::optional<uint32_t> ReadNumber(HKEY key, const char16_t* name)
{
    uint32_t value = 0;
    if (!ReadValue(key, name, &value, sizeof value).Is(REG_DWORD))
        return std::nullopt;
    return value;
}

std::optional<uint32_t> ReadNumber(HKEY key, int32_t id)
{
    return ReadNumber(key, ValueName(id, u'\0').Text());
}

} // namespace

int32_t VxGetMetric(HVXMETRIC metric, int32_t id)
{
    const HKEY key = KeyOf(metric);
    return key ? int32_t(ReadNumber(key, id).value_or(0)) : 0;
}

// The lower limit first: it wins where the limits cross.
int32_t VxGetMetricEx(HVXMETRIC metric, int32_t id, int32_t min, int32_t max, int32_t deflt)
{
    const HKEY key = KeyOf(metric);
    if (!key)
        return deflt;
    const int32_t value = int32_t(ReadNumber(key, id).value_or(uint32_t(deflt)));
    if (min == max)
        return value;
    return value < min ? min : std::min(value, max);
}

uint32_t VxGetMetricBool(HVXMETRIC metric, int32_t id, uint32_t deflt)
{
    const HKEY key = KeyOf(metric);
    return key ? ReadNumber(key, id).value_or(deflt) != 0 : deflt;
}

HRESULT VxSetMetric(HVXMETRIC metric, int32_t id, uint32_t value)
{
    return WriteValue(KeyOf(metric), ValueName(id, u'\0').Text(), REG_DWORD, &value, sizeof value);
}

uint32_t VxGetMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t deflt)
{
    const HKEY key = KeyOf(metric);
    return key ? ReadNumber(key, name).value_or(deflt) : deflt;
}

HRESULT VxSetMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t value)
{
    const HKEY key = KeyOf(metric);
    if (!key)
        return E_FAIL;
    return StatusOfRegistry(
        RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value));
}
