#include "platform/module_table.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/locale.h"
#include "vx/platform/module.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <type_traits>

namespace vxplatform {
namespace {

constexpr WORD kNeutral = 0, kEnglishUs = 0x0409, kEnglish = 0x0009, kPrimaryMask = 0x03FF;

std::nullptr_t Fail(DWORD code)
{
    SetLastError(code);
    return nullptr;
}

BOOL FailWith(DWORD code)
{
    SetLastError(code);
    return FALSE;
}

// The resources of one type; none with the last error set.
ResourceImage::Range FindType(const ResourceImage& image, const WCHAR* type)
{
    const ResourceImage::Range found = image.OfType(NameFrom(type));
    if (found.empty())
        Fail(image.All().empty() ? ERROR_RESOURCE_DATA_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND);
    return found;
}

// The resources of one type and name, by language; none with the last error set.
ResourceImage::Range FindName(const ResourceImage& image, const WCHAR* type, const WCHAR* name)
{
    const ResourceImage::Range ofType = FindType(image, type);
    const ResourceImage::Range found = ResourceImage::OfName(ofType, NameFrom(name));
    if (found.empty() && !ofType.empty())
        Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
    return found;
}

const Resource* FindLanguage(ResourceImage::Range languages, WORD language)
{
    const auto found = std::ranges::lower_bound(languages, language, {}, &Resource::language);
    return found != languages.end() && found->language == language ? &*found : nullptr;
}

// Null where there is no language at all.
const Resource* ChooseLanguage(ResourceImage::Range languages)
{
    const WORD user = GetUserDefaultUILanguage();
    for (const WORD language : {kNeutral, user, WORD(user & kPrimaryMask), kEnglishUs, kEnglish})
        if (const Resource* found = FindLanguage(languages, language))
            return found;
    return languages.empty() ? nullptr : &languages.front();
}

HRSRC HandleOf(const Resource* resource)
{
    return const_cast<Resource*>(resource);
}

// Calls use(resource); an empty value with the last error set where it is not one of the module's.
template <class Use>
auto WithResource(HMODULE module, HRSRC handle, Use use)
{
    return WithModule(module, [&](const Module& found) -> std::invoke_result_t<Use, const Resource&> {
        if (const Resource* resource = found.Resources().At(handle))
            return use(*resource);
        SetLastError(ERROR_INVALID_HANDLE);
        return {};
    });
}

// Each of the range's resources that begins a run of equal ones: those behind it were given twice, or
// differ in what is not asked for.
template <class Same, class Tell>
BOOL TellEach(ResourceImage::Range range, Same same, Tell tell)
{
    for (size_t i = 0; i < range.size(); ++i)
        if ((i == 0 || !same(range[i - 1], range[i])) && !tell(range[i]))
            return FailWith(ERROR_RESOURCE_ENUM_USER_STOP);
    return !range.empty();
}

// The form in which callers name it.
const WCHAR* CallersName(const ResourceName& name)
{
    return name.text.empty() ? MAKEINTRESOURCEW(name.number) : name.text.c_str();
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

HRSRC FindResourceW(HMODULE module, const WCHAR* name, const WCHAR* type)
{
    return WithModule(module, [&](const Module& found) {
        return HandleOf(ChooseLanguage(FindName(found.Resources(), type, name)));
    });
}

HRSRC FindResourceExW(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language)
{
    return WithModule(module, [&](const Module& found) -> HRSRC {
        const ResourceImage::Range languages = FindName(found.Resources(), type, name);
        const Resource* resource = FindLanguage(languages, language);
        if (!resource && !languages.empty())
            return Fail(ERROR_RESOURCE_LANG_NOT_FOUND);
        return HandleOf(resource);
    });
}

HGLOBAL LoadResource(HMODULE module, HRSRC resource)
{
    return WithResource(module, resource, [](const Resource& found) -> HGLOBAL {
        return const_cast<std::byte*>(found.data.data());
    });
}

void* LockResource(HGLOBAL data)
{
    return FindModuleOfResource(data) ? data : Fail(ERROR_INVALID_HANDLE);
}

DWORD SizeofResource(HMODULE module, HRSRC resource)
{
    return WithResource(module, resource, [](const Resource& found) { return DWORD(found.data.size()); });
}

int LoadStringW(HINSTANCE module, UINT id, WCHAR* text, int chars)
{
    if (!text || chars < 1)
        return FailWith(ERROR_INVALID_PARAMETER);
    *text = 0;
    return WithModule(module, [&](const Module& found) {
        const WORD number = WORD(id);
        const WCHAR* block = MAKEINTRESOURCEW(number / kStringsInBlock + 1);
        const Resource* resource = ChooseLanguage(FindName(found.Resources(), RT_STRING, block));
        if (!resource)
            return 0;
        const std::span<const std::byte> string = StringOfBlock(resource->data, number % kStringsInBlock);
        const size_t length = std::min(string.size() / sizeof(WCHAR), size_t(chars) - 1);
        if (length > 0)
            std::memcpy(text, string.data(), length * sizeof(WCHAR));
        text[length] = 0;
        return int(length);
    });
}

BOOL EnumResourceLanguagesW(HMODULE module, const WCHAR* type, const WCHAR* name, ENUMRESLANGPROCW receive,
                            LONG_PTR context)
{
    return WithModule(module, [&](const Module& found) {
        return TellEach(
            FindName(found.Resources(), type, name),
            [](const Resource& a, const Resource& b) { return a.language == b.language; },
            [&](const Resource& resource) {
                return receive(found.Handle(), type, name, resource.language, context);
            });
    });
}

BOOL EnumResourceNamesW(HMODULE module, const WCHAR* type, ENUMRESNAMEPROCW receive, LONG_PTR context)
{
    return WithModule(module, [&](const Module& found) {
        return TellEach(
            FindType(found.Resources(), type),
            [](const Resource& a, const Resource& b) { return ResourceImage::SameName(a.name, b.name); },
            [&](const Resource& resource) {
                return receive(found.Handle(), type, CallersName(resource.name), context);
            });
    });
}
