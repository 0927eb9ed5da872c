#include "lang/language.h"

#include "lang/kernel_language.h"
#include "vx/internationals.h"
#include "vx/path.h"
#include "vx/platform/heap.h"
#include "vx/platform/layout.h"
#include "vx/platform/locale.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string_view>

namespace vx {
namespace {

constexpr uint32_t kDefaultRing = 8192, kLeastRing = 2048, kRingReserve = 1024; // characters
constexpr int32_t kCacheStep = 64;                                              // slots
constexpr int32_t kLanguageListChars = 260;

constexpr uint32_t kRightToLeft[] = {1, 13, 32, 41}; // Arabic, Hebrew, Urdu, Farsi

struct LanguageTag
{
    uint32_t language;
    const char16_t* tag;
};
constexpr LanguageTag kTags[] = {
    {4, u"zh-CN"},  {7, u"de-DE"},  {10, u"es-ES"}, {12, u"fr-FR"},
    {17, u"ja-JP"}, {21, u"pl-PL"}, {25, u"ru-RU"},
};

void* Allocate(uint64_t bytes)
{
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes);
}

void Free(void* block)
{
    HeapFree(GetProcessHeap(), 0, block);
}

bool IsRightToLeft(uint32_t lcid)
{
    return std::ranges::find(kRightToLeft, lcid & kPrimaryLanguageMask) != std::end(kRightToLeft);
}

// The file of a module's name with the extension LNG, loaded; null where there is none.
HMODULE LoadLanguageFile(HMODULE module)
{
    char16_t path[VX_MAX_PATH];
    if (VxGetModuleFileName(module, path, VX_MAX_PATH) == 0)
        return nullptr;
    VxReplaceExtensionOnPathName(path, VX_MAX_PATH, u"LNG");
    return LoadLibraryW(path);
}

HRESULT MakeRing(VxLanguage& language, uint32_t chars)
{
    language.tempCapacity = chars == 0 ? kDefaultRing : std::max(chars, kLeastRing);
    language.tempReserve = kRingReserve;
    language.tempBuffer =
        static_cast<char16_t*>(Allocate(uint64_t(language.tempCapacity) * sizeof(char16_t)));
    return language.tempBuffer ? S_OK : E_OUTOFMEMORY;
}

HRESULT Fill(VxLanguage& language, HMODULE module, uint32_t lcid, uint32_t tempChars)
{
    HRESULT status = MakeRing(language, tempChars);
    if (SUCCEEDED(status))
        status = VxList_CreateExZ(&language.stringCache, sizeof(void*), kCacheStep, kCacheStep,
                                  VXLIST_OPT_HEAPITEMS, nullptr, 0, nullptr);
    if (FAILED(status))
        return status;
    language.lcid = lcid;
    language.hInstDefault = module;
    language.languageFile = LoadLanguageFile(module);
    language.hInstLang = language.languageFile ? language.languageFile : module;
    InitializeCriticalSection(&language.lock);
    language.lockValid = 1;
    return S_OK;
}

void SetLanguage(VxLanguage& language, uint32_t lcid)
{
    if (language.lcid != lcid) {
        language.lcid = lcid;
        std::atomic_ref(language.langSlot).store(0);
        const LanguageLock lock(&language);
        ForgetStrings(&language);
    }
    language.useLangInst = !VxLang_IsLCIDEnglish(lcid);
}

// The module that the handle found by itself.
HMODULE OwnLanguageInst(const VxLanguage& language)
{
    return language.languageFile ? language.languageFile : language.hInstDefault;
}

// Takes what VxLang_ChangeLangInst put in from the kernel's handle too, which must not outlive it there.
void GiveUpChangedInst(const VxLanguage& language)
{
    const HMODULE module = language.changedInst;
    if (!module)
        return;
    if (g_kernelLanguage && g_kernelLanguage->hInstLang == module)
        g_kernelLanguage->hInstLang = OwnLanguageInst(*g_kernelLanguage);
    if (module != language.hInstDefault && module != language.languageFile) // which have their own owners
        FreeLibrary(module);
}

struct LanguageList
{
    char16_t text[kLanguageListChars];
    int32_t length;
};

void Append(LanguageList& list, std::u16string_view text)
{
    list.length += CopyCut(text, list.text + list.length, kLanguageListChars - list.length);
}

BOOL AppendLanguage(HMODULE, const char16_t*, const char16_t*, WORD language, LONG_PTR context)
{
    auto& list = *reinterpret_cast<LanguageList*>(context);
    char16_t letters[10] = {};
    GetLocaleInfoW(language, LOCALE_SABBREVLANGNAME, letters, int(std::size(letters)));
    if (list.length > 0)
        Append(list, u",");
    Append(list, letters);
    return TRUE;
}

using InitMUILanguageFn = void (*)(LANGID);

// Of the common controls; null where the system has none.
InitMUILanguageFn FindInitMUILanguage()
{
    using AnyFn = void (*)();
    const HMODULE controls = LoadLibraryW(u"comctl32.dll");
    const FARPROC found = controls ? GetProcAddress(controls, "InitMUILanguage") : nullptr;
    return reinterpret_cast<InitMUILanguageFn>(reinterpret_cast<AnyFn>(found));
}

} // namespace
} // namespace vx

using namespace vx;

HRESULT VxLang_Open(HVXLANG* handle, HMODULE module, uint32_t lcid, uint32_t tempChars)
{
    if (*handle)
        return VX_S_ALREADY_OPEN;
    auto* language = static_cast<VxLanguage*>(Allocate(sizeof(VxLanguage)));
    if (!language)
        return E_OUTOFMEMORY;
    const HRESULT status = Fill(*language, module, lcid, tempChars);
    if (SUCCEEDED(status))
        *handle = language;
    else
        VxLang_Close(language);
    return status;
}

int32_t VxLang_Close(HVXLANG handle)
{
    if (!handle)
        return 0;
    if (handle->lockValid)
        DeleteCriticalSection(&handle->lock);
    GiveUpChangedInst(*handle);
    if (handle->languageFile)
        FreeLibrary(handle->languageFile);
    Free(handle->tempBuffer);
    VxList_Destroy(handle->stringCache);
    Free(handle);
    return 0;
}

HMODULE VxLang_InstFromLang(HVXLANG handle)
{
    return handle->hInstLang && handle->useLangInst ? handle->hInstLang : handle->hInstDefault;
}

int32_t VxLang_ChangeLangInst(HVXLANG handle, HMODULE module)
{
    if (!handle || !g_kernelLanguage)
        return 0;
    if (!module)
        return 1;
    handle->changedInst = module;
    handle->hInstLang = module;
    g_kernelLanguage->hInstLang = module;
    return 1;
}

uint32_t VxLang_GetLCID(HVXLANG handle)
{
    return handle ? handle->lcid : 0;
}

int32_t VxLang_UpdateKernelLCID(HVXLANG handle, uint32_t lcid)
{
    if (!handle || !g_kernelLanguage)
        return 0;
    const uint32_t language = lcid == 0 ? kUsEnglish : lcid;
    SetLanguage(*handle, language);
    SetLanguage(*g_kernelLanguage, language);
    SetProcessDefaultLayout(IsRightToLeft(language) ? LAYOUT_RTL : 0);
    return 1;
}

void VxLang_UpdateThreadLocale(HVXLANG handle)
{
    static const InitMUILanguageFn initMUILanguage = FindInitMUILanguage();
    const uint32_t lcid = VxLang_GetLCID(handle);
    SetThreadLocale(lcid);
    if (initMUILanguage)
        initMUILanguage(LANGID(lcid));
}

int32_t VxLang_GetLangAbbrev(HVXLANG handle, char16_t* dst, int32_t dstChars)
{
    if (!handle || dstChars < 1)
        return 0;
    if (GetLocaleInfoW(VxLang_GetConditionedLCID(handle->lcid), LOCALE_SABBREVLANGNAME, dst, dstChars) > 0)
        return 1;
    dst[0] = u'\0';
    return 0;
}

int32_t VxLang_GetLangllCC(HVXLANG handle, char16_t* dst, int32_t dstChars)
{
    const uint32_t language = VxLang_GetLCID(handle) & kPrimaryLanguageMask;
    const auto* found = std::ranges::find(kTags, language, &LanguageTag::language);
    const bool known = found != std::end(kTags);
    CopyCut(known ? found->tag : kEmptyText, dst, dstChars);
    return !known;
}

int32_t VxLang_UseRTL(HVXLANG handle)
{
    return IsRightToLeft(VxLang_GetLCID(handle));
}

void VxLang_EnableProcessMirroring()
{
    SetProcessDefaultLayout(LAYOUT_RTL);
}

void VxLang_DisableProcessMirroring()
{
    SetProcessDefaultLayout(0);
}

int32_t VxEnumResourceLanguages(HVXLANG handle, uint16_t resourceId, char16_t* dst, int32_t dstChars)
{
    LanguageList list = {};
    if (handle->hInstLang && handle->useLangInst)
        EnumResourceLanguagesW(handle->hInstLang, RT_VERSION, MAKEINTRESOURCEW(resourceId), AppendLanguage,
                               reinterpret_cast<LONG_PTR>(&list));
    return CopyCut(list.text, dst, dstChars);
}
