// Opening, closing and deleting whole keys.
#include "kernel/application_key.h"
#include "persist/metric.h"
#include "vx/platform/heap.h"

#include <algorithm>

namespace {

using namespace vx;

constexpr std::u16string_view kMetrics = u"\\Metrics";

PathText& AddSubKey(PathText& path, const char16_t* subKey)
{
    return subKey && *subKey ? path.Add(u"\\").Add(subKey) : path;
}

PathText MetricsPath(const char16_t* vendor, const char16_t* app, uint32_t version)
{
    return ApplicationKey(vendor, app, version).Add(kMetrics);
}

void DeleteInBothHives(const PathText& path)
{
    VxRegDeleteKey(HKEY_LOCAL_MACHINE, path.Text());
    VxRegDeleteKey(HKEY_CURRENT_USER, path.Text());
}

// Without a name the key would be that of all applications, or of all vendors.
bool IsNamed(const char16_t* vendor, const char16_t* app)
{
    return !ViewOf(vendor).empty() && !ViewOf(app).empty();
}

// The first sub-key's name; null behind the last.
const char16_t* FirstSubKey(HKEY key, char16_t (&name)[kMaxPath])
{
    DWORD room = kMaxPath;
    const LSTATUS error = RegEnumKeyExW(key, 0, name, &room, nullptr, nullptr, nullptr, nullptr);
    return error == ERROR_SUCCESS ? name : nullptr;
}

bool IsHiveRoot(HKEY key, const char16_t* subKey)
{
    const bool hive = key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE;
    return hive && (!subKey || !*subKey);
}

} // namespace

HRESULT VxMetric_Open(HVXMETRIC* outMetric, const char16_t* app, uint32_t version, const char16_t* subKey)
{
    return VxMetric_OpenRegHiveAndVersion(outMetric, app, version, kVendor, subKey);
}

HRESULT VxMetric_OpenRegHiveAndVersion(HVXMETRIC* outMetric, const char16_t* app, uint32_t version,
                                       const char16_t* vendor, const char16_t* subKey)
{
    return VxMetric_OpenAppVersion(outMetric, MetricsPath(vendor, app, version).Text(), subKey);
}

HRESULT VxMetric_OpenAppVersion(HVXMETRIC* outMetric, const char16_t* path, const char16_t* subKey)
{
    if (!outMetric)
        return E_POINTER;
    *outMetric = nullptr;
    auto* const metric =
        static_cast<tVXMETRIC*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(tVXMETRIC)));
    if (!metric)
        return E_OUTOFMEMORY;
    PathText whole(ViewOf(path));
    AddSubKey(whole, subKey);
    CopyCut(whole.View(), metric->keyPath, kMaxPath);
    *outMetric = metric;
    return StatusOfRegistry(RegCreateKeyW(HKEY_CURRENT_USER, metric->keyPath, &metric->key));
}

HRESULT VxMetric_OpenSubKey(HVXMETRIC* outMetric, HVXMETRIC parent, const char16_t* subKey)
{
    if (!outMetric)
        return E_POINTER;
    *outMetric = nullptr;
    const tVXMETRIC* const record = MetricOrNull(parent);
    if (!record)
        return E_FAIL;
    const std::u16string_view path(record->keyPath);
    const size_t place = path.find(kMetrics);
    if (place == path.npos)
        return E_INVALIDARG;
    const PathText metrics = PathText(path.substr(0, place)).Add(kMetrics);
    return VxMetric_OpenAppVersion(outMetric, metrics.Text(), subKey);
}

HRESULT VxMetric_Close(HVXMETRIC metric)
{
    tVXMETRIC* const record = MetricOrNull(metric);
    if (!record)
        return S_OK;
    if (record->key)
        RegCloseKey(record->key);
    HeapFree(GetProcessHeap(), 0, record);
    return S_OK;
}

HRESULT VxMetric_CloseAndDeleteKey(HVXMETRIC metric)
{
    const tVXMETRIC* const record = MetricOrNull(metric);
    if (!record)
        return E_FAIL;
    const PathText path(record->keyPath);
    VxMetric_Close(metric);
    VxRegDeleteKey(HKEY_CURRENT_USER, path.Text());
    return S_OK;
}

HRESULT VxMetric_DeleteAll(const char16_t* app, uint32_t version)
{
    return VxMetric_DeleteAllHiveAndVersion(app, version, kVendor);
}

HRESULT VxMetric_DeleteAllHiveAndVersion(const char16_t* app, uint32_t version, const char16_t* vendor)
{
    if (IsNamed(vendor, app))
        DeleteInBothHives(ApplicationKey(vendor, app, version));
    return S_OK;
}

HRESULT VxMetric_DeleteUserMetrics(const char16_t* app, uint32_t version)
{
    if (IsNamed(kVendor, app))
        VxRegDeleteKey(HKEY_CURRENT_USER, ApplicationKey(kVendor, app, version).Text());
    return S_OK;
}

HRESULT VxMetric_DeleteKey(const char16_t* app, uint32_t version, const char16_t* subKey)
{
    return VxMetric_DeleteKeyHiveAndVersion(app, version, kVendor, subKey);
}

HRESULT VxMetric_DeleteKeyHiveAndVersion(const char16_t* app, uint32_t version, const char16_t* vendor,
                                         const char16_t* subKey)
{
    PathText path = MetricsPath(vendor, app, version);
    DeleteInBothHives(AddSubKey(path, subKey));
    return S_OK;
}

uint32_t VxRegGetSubKeyCount(HKEY key, const char16_t* subKey, uint32_t* nameChars)
{
    DWORD count = 0, longest = 0;
    HKEY opened = nullptr;
    const bool exists = RegOpenKeyExW(key, subKey, 0, KEY_READ, &opened) == ERROR_SUCCESS;
    if (exists) {
        RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &count, &longest, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr);
        RegCloseKey(opened);
    }
    if (nameChars)
        *nameChars = exists ? longest + 1 : 0;
    return count;
}

// A key goes only once it has no sub-keys. A hive cannot go, and so nothing below it is touched.
int32_t VxRegDeleteKey(HKEY key, const char16_t* subKey)
{
    if (IsHiveRoot(key, subKey))
        return 0;
    if (RegDeleteKeyW(key, subKey) == ERROR_SUCCESS)
        return 1;
    HKEY opened = nullptr;
    const LSTATUS error = RegOpenKeyExW(key, subKey, 0, KEY_READ, &opened);
    if (error != ERROR_SUCCESS)
        return error == ERROR_FILE_NOT_FOUND;
    char16_t name[kMaxPath];
    while (FirstSubKey(opened, name) && VxRegDeleteKey(opened, name))
        continue;
    RegCloseKey(opened);
    return RegDeleteKeyW(key, subKey) == ERROR_SUCCESS;
}
