// A host's module with its language file, made of string resources alone, and language handles on it.
#pragma once

#include "lang/kernel_language.h"
#include "support/locales.h"
#include "support/resource_image.h"
#include "support/temp_folder.h"

#include <optional>

namespace vxtest {

using Resources = std::vector<TestResource>;

class HostModule
{
public:
    explicit HostModule(const Resources& resources, const std::optional<Resources>& languageFile = {})
    {
        if (languageFile)
            folder_.Write("host.LNG", ResImage(*languageFile));
        module = Load(u"host.bin", resources);
        EXPECT_EQ(vx::OpenKernelLanguage(module), S_OK);
    }
    ~HostModule()
    {
        vx::CloseKernelLanguage();
        EXPECT_TRUE(FreeLibrary(module));
    }

    HMODULE Load(const std::u16string& name, const Resources& resources) const
    {
        folder_.Write(std::string(name.begin(), name.end()), ResImage(resources));
        const HMODULE loaded = LoadLibraryW(folder_.DrivePath(name).c_str());
        EXPECT_NE(loaded, nullptr);
        return loaded;
    }

    HMODULE module = nullptr;

private:
    TempFolder folder_;
    OnlyLocale english_{"en-US"};
};

class Handle
{
public:
    explicit Handle(HMODULE module = nullptr, uint32_t lcid = 0, uint32_t tempChars = 0)
    {
        EXPECT_EQ(VxLang_Open(&handle_, module, lcid, tempChars), S_OK);
    }
    ~Handle() { VxLang_Close(handle_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    operator HVXLANG() const { return handle_; }

private:
    HVXLANG handle_ = nullptr;
};

} // namespace vxtest
