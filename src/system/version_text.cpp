#include "kernel/text.h"
#include "vx/osversion.h"
#include "vx/platform/version.h"
#include "vx/print.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace vx {
namespace {

constexpr uint32_t kQueryRoom = 128;

struct Translation
{
    uint16_t language, codePage;
};

bool FirstTranslation(const void* block, Translation& out)
{
    void* value = nullptr;
    UINT bytes = 0;
    if (!VerQueryValueW(block, u"\\VarFileInfo\\Translation", &value, &bytes) || bytes < sizeof(out))
        return false;
    std::memcpy(&out, value, sizeof(out));
    return true;
}

bool FindText(const void* block, const char16_t* key, std::u16string_view& out)
{
    Translation first;
    char16_t query[kQueryRoom];
    if (!FirstTranslation(block, first) ||
        FAILED(VxCchPrintF(query, kQueryRoom, nullptr, u"\\StringFileInfo\\%04hX%04hX\\%s", first.language,
                           first.codePage, key)))
        return false;
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block, query, &value, &length))
        return false;
    const std::u16string_view all(static_cast<const char16_t*>(value), length);
    out = all.substr(0, all.find(u'\0'));
    return true;
}

} // namespace
} // namespace vx

HRESULT VxVersion_GetString(const char16_t* path, const char16_t* key, char16_t* text, int32_t capacity)
{
    const DWORD bytes = GetFileVersionInfoSizeW(path, nullptr);
    if (bytes == 0)
        return VX_E_ITEM_NOT_FOUND;
    const std::unique_ptr<std::byte[]> block(new (std::nothrow) std::byte[bytes]);
    std::u16string_view found;
    if (!block || !GetFileVersionInfoW(path, 0, bytes, block.get()) || !vx::FindText(block.get(), key, found))
        return VX_E_ITEM_NOT_FOUND;
    vx::CopyCut(found, text, capacity);
    return S_OK;
}
