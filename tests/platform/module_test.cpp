#include "vx/platform/module.h"

#include "support/resource_image.h"
#include "support/temp_folder.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace vxtest;

extern "C" VX_VISIBLE intptr_t VxTest_OfExecutable()
{
    return 7;
}

// The thread sanitizer does not see the lock under which the system's loader allocates and frees.
extern "C" const char* __tsan_default_suppressions()
{
    return "race:_dl_close_worker\n";
}

namespace {

std::u16string PathOf(HMODULE module)
{
    std::u16string path(4096, u'\0');
    path.resize(GetModuleFileNameW(module, path.data(), DWORD(path.size())));
    return path;
}

// The number that a module has as raw data; 0 where it has none.
int Number(HMODULE module)
{
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(1), RT_RCDATA);
    const void* data = found ? LockResource(LoadResource(module, found)) : nullptr;
    return data ? *static_cast<const uint8_t*>(data) : 0;
}

Bytes NumberFile(uint8_t number)
{
    return ResImage({{10, 1, 0, {number}}});
}

struct Modules : testing::Test
{
    void Copy(const char* module, const char* name)
    {
        std::filesystem::copy_file(module, folder.Path() / name);
    }
    HMODULE Load(const std::u16string& name, DWORD flags = 0)
    {
        SetLastError(ERROR_SUCCESS);
        return LoadLibraryExW(folder.DrivePath(name).c_str(), nullptr, flags);
    }

    const TempFolder folder;
};

} // namespace

TEST_F(Modules, SharedObjectsHaveCodeAndResources)
{
    Copy(VX_TEST_MODULE, "libplain.so.2");
    folder.Write("libplain.res", NumberFile(3));
    Copy(VX_TEST_MODULE_WITH_SECTION, "section.so");
    folder.Write("section.res", NumberFile(5)); // the section is first
    const struct
    {
        const char16_t *name, *path;
        int number;
    } rows[] = {{u"LIBPLAIN.so.2", u"libplain.so.2", 3}, {u".\\section", u"section.so", 7}};
    for (const auto& row : rows) {
        const HMODULE module = Load(row.name);
        ASSERT_NE(module, nullptr) << GetLastError();
        EXPECT_EQ(PathOf(module), folder.DrivePath(row.path));
        EXPECT_EQ(Number(module), row.number);
        const FARPROC answer = GetProcAddress(module, "TestModuleAnswer");
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer(), 42);
        EXPECT_EQ(HMODULE(GetProcAddress(module, "TestModuleOwnHandle")()), module);
        EXPECT_EQ(GetProcAddress(module, "malloc"), nullptr) << "of a module that it needs";
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
        EXPECT_EQ(GetProcAddress(module, reinterpret_cast<const char*>(uintptr_t(1))), nullptr);

        EXPECT_EQ(GetModuleHandleW(folder.DrivePath(row.name).c_str()), module);
        const HMODULE data = Load(row.name, LOAD_LIBRARY_AS_DATAFILE);
        EXPECT_NE(data, module);
        EXPECT_EQ(Number(data), row.number);
        EXPECT_EQ(GetProcAddress(data, "TestModuleAnswer"), nullptr);
        EXPECT_TRUE(FreeLibrary(data));
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_EQ(GetModuleHandleW(row.path), nullptr);
    }
}

TEST_F(Modules, FailuresSayWhy)
{
    folder.Write("text.dll", {'t', 'e', 'x', 't'});
    folder.Write("empty.dll", {});
    folder.Write("broken.so", {0x7F, 'E', 'L', 'F'});
    folder.Write("folder.dll/file", {});
    const std::u16string drive = folder.DrivePath(u"");
    const std::pair<std::u16string, DWORD> rows[] = {
        {drive + u"missing", ERROR_MOD_NOT_FOUND},     {drive + u"missing.dll", ERROR_MOD_NOT_FOUND},
        {drive + u"text", ERROR_BAD_EXE_FORMAT},       {drive + u"text.", ERROR_MOD_NOT_FOUND},
        {drive + u"empty.dll", ERROR_BAD_EXE_FORMAT},  {drive + u"broken.so", ERROR_MOD_NOT_FOUND},
        {drive + u"folder.dll", ERROR_ACCESS_DENIED},  {u"Z:\\a.dll", ERROR_PATH_NOT_FOUND},
        {u"no such library.dll", ERROR_MOD_NOT_FOUND}, {u"", ERROR_INVALID_PARAMETER},
    };
    for (const auto& [path, error] : rows) {
        EXPECT_EQ(LoadLibraryW(path.c_str()), nullptr);
        EXPECT_EQ(GetLastError(), error) << std::filesystem::path(path);
    }
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

// Handles that are none are not followed: these would fault, or are another module's.
TEST_F(Modules, StrangeHandlesFail)
{
    folder.Write("a.LNG", NumberFile(1));
    folder.Write("b.LNG", NumberFile(2));
    const HMODULE a = Load(u"a.LNG"), b = Load(u"b.LNG");
    const HRSRC resource = FindResourceW(a, MAKEINTRESOURCEW(1), RT_RCDATA);
    char byte = 0;
    for (void* strange :
         {reinterpret_cast<void*>(1), static_cast<void*>(&byte), static_cast<void*>(resource)}) {
        WCHAR text[8];
        const bool failed[] = {!FreeLibrary(strange),
                               !GetProcAddress(strange, "main"),
                               !GetModuleFileNameW(strange, text, 8),
                               !FindResourceW(strange, MAKEINTRESOURCEW(1), RT_RCDATA),
                               !LoadResource(strange, resource),
                               !LoadResource(b, resource),
                               !SizeofResource(a, &byte),
                               !LockResource(strange),
                               !LoadStringW(strange, 1, text, 8)};
        EXPECT_EQ(std::ranges::count(failed, true), std::ssize(failed));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(FreeLibrary(a) && FreeLibrary(b));
}

TEST_F(Modules, ThreadsMayShareThem)
{
    Copy(VX_TEST_MODULE, "shared.so");
    folder.Write("shared.res", NumberFile(9));
    folder.Write("shared.LNG", NumberFile(9));
    std::atomic<int> right{0};
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                const HMODULE module = Load(i % 2 ? u"shared.so" : u"shared.LNG");
                right += Number(module) == 9 && FreeLibrary(module);
            }
        });
    threads.clear();
    EXPECT_EQ(right, 800);
}
