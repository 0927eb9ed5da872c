#include "vx/platform/module.h"

#include "platform/elf_section.h"
#include "platform/host_path.h"
#include "platform/module_table.h"
#include "platform/utf8.h"
#include "vx/platform/debug.h"
#include "vx/platform/lasterror.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vxplatform {
namespace {

constexpr DWORD kResourcesAlone = LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;
constexpr DWORD kKnownLoadFlags = kResourcesAlone | LOAD_WITH_ALTERED_SEARCH_PATH;

std::nullptr_t Fail(DWORD code)
{
    SetLastError(code);
    return nullptr;
}

bool HasFolder(std::u16string_view file)
{
    return file.find_first_of(u"\\/:") != file.npos;
}

// The names that a caller's name may stand for, in the order in which they are tried.
std::vector<std::u16string> FileNames(std::u16string file)
{
    const size_t name = file.find_last_of(u"\\/:") + 1; // npos + 1 is 0
    const size_t dot = file.find(u'.', name);
    if (dot == file.npos)
        return {file + u".so", file + u".dll", file};
    if (dot == file.size() - 1)
        file.pop_back();
    return {file};
}

// How the system's loader may know a name without a folder: OpenCL.dll is there libOpenCL.so.1.
std::vector<std::string> SystemNames(const std::u16string& file)
{
    constexpr std::string_view kSharedObject = ".so";
    const std::string name = ToUtf8(file);
    if (name.find(kSharedObject) != name.npos)
        return {name};
    const std::string stem = name.substr(0, name.find('.'));
    return {"lib" + stem + ".so", "lib" + stem + ".so.1"};
}

// Empty with the last error set where the path has no host path.
std::string AbsolutePath(const std::u16string& file)
{
    const HostPath path(file.c_str());
    return path ? AbsoluteHostPath(path.c_str()) : std::string();
}

// Beside the executable; empty where no drive has that.
std::string PathBesideExecutable(const std::u16string& name)
{
    const ModulePointer executable = Executable();
    const std::u16string path = executable ? DrivePathOf(executable->Path()) : std::u16string();
    return path.empty() ? std::string() : AbsolutePath(path.substr(0, path.rfind(u'\\') + 1) + name);
}

void SayWhyNotLoaded()
{
    if (const char* reason = dlerror())
        OutputDebugStringA((std::string("LoadLibraryW: ") + reason + "\n").c_str());
}

// The module in a file that exists; null with the last error set for a file that is none.
ModulePointer OpenFile(const std::string& path, bool resourcesAlone)
{
    MappedFile file(path.c_str());
    if (file.Content().empty())
        return Fail(errno == EINVAL ? ERROR_BAD_EXE_FORMAT : ERROR_ACCESS_DENIED); // empty, or not to be read
    if (!resourcesAlone && IsElf(file.Content())) {
        if (ModulePointer code = OpenCode(path))
            return code;
        SayWhyNotLoaded();
        return Fail(ERROR_MOD_NOT_FOUND);
    }
    ModulePointer data(new Module(std::move(file), path));
    return data->IsModule() ? data : Fail(ERROR_BAD_EXE_FORMAT);
}

ModulePointer OpenFromSystem(const std::u16string& file)
{
    for (const std::string& name : SystemNames(file))
        if (ModulePointer code = OpenCode(name))
            return code;
    SayWhyNotLoaded();
    return nullptr;
}

// The module that the name stands for; null with the last error set.
ModulePointer Open(const std::u16string& file, bool resourcesAlone)
{
    const bool hasFolder = HasFolder(file);
    for (const std::u16string& name : FileNames(file)) {
        const std::string path = hasFolder ? AbsolutePath(name) : PathBesideExecutable(name);
        if (path.empty() && hasFolder)
            return nullptr;
        std::error_code unknown;
        if (std::filesystem::exists(path, unknown))
            return OpenFile(path, resourcesAlone);
    }
    if (!hasFolder && !resourcesAlone)
        if (ModulePointer code = OpenFromSystem(file))
            return code;
    return Fail(ERROR_MOD_NOT_FOUND);
}

// A loaded module by its path or name; null where there is none.
ModulePointer FindByFile(const std::u16string& file)
{
    const bool hasFolder = HasFolder(file);
    for (const std::u16string& name : FileNames(file))
        if (ModulePointer module =
                hasFolder ? FindModuleOfPath(AbsolutePath(name)) : FindModuleOfName(ToUtf8(name)))
            return module;
    if (!hasFolder)
        for (const std::string& name : SystemNames(file))
            if (ModulePointer module = FindModuleOfName(name))
                return module;
    return nullptr;
}

ModulePointer FindForCaller(DWORD flags, const WCHAR* file)
{
    if (!file)
        return Executable();
    if (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS)
        return FindModuleOfCode(file);
    return FindByFile(file);
}

// Copies what fits, terminated. Returns the length, or the room where it is too small.
template <class Char>
DWORD CopyPath(const std::basic_string<Char>& path, Char* out, DWORD room)
{
    if (path.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    if (path.size() < room) {
        std::memcpy(out, path.c_str(), (path.size() + 1) * sizeof(Char));
        return DWORD(path.size());
    }
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    if (room > 0) {
        std::memcpy(out, path.data(), (room - 1) * sizeof(Char));
        out[room - 1] = 0;
    }
    return room;
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

HMODULE LoadLibraryW(const WCHAR* file)
{
    return LoadLibraryExW(file, nullptr, 0);
}

HMODULE LoadLibraryExW(const WCHAR* file, HANDLE reserved, DWORD flags)
{
    if (!file || !*file || reserved || (flags & ~kKnownLoadFlags))
        return Fail(ERROR_INVALID_PARAMETER);
    return WithMemory([&]() -> HMODULE {
        ModulePointer opened = Open(file, flags & kResourcesAlone);
        return opened ? CountLoad(std::move(opened))->Handle() : nullptr;
    });
}

BOOL FreeLibrary(HMODULE module)
{
    if (TakeBackLoad(module))
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

FARPROC GetProcAddress(HMODULE module, const char* name)
{
    return WithModule(module, [&](const Module& found) -> FARPROC {
        if (void* address = IS_INTRESOURCE(name) ? nullptr : found.Export(name))
            return reinterpret_cast<FARPROC>(address);
        return Fail(ERROR_PROC_NOT_FOUND);
    });
}

HMODULE GetModuleHandleW(const WCHAR* file)
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, file, &module);
    return module;
}

BOOL GetModuleHandleExW(DWORD flags, const WCHAR* file, HMODULE* module)
{
    constexpr DWORD kKnown =
        GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    *module = nullptr;
    if (flags & ~kKnown) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *module = WithMemory([&]() -> HMODULE {
        ModulePointer found = FindForCaller(flags, file);
        if (!found)
            return Fail(ERROR_MOD_NOT_FOUND);
        if (!(flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT))
            CountLoad(found);
        return found->Handle();
    });
    return *module != nullptr;
}

DWORD GetModuleFileNameW(HMODULE module, WCHAR* path, DWORD chars)
{
    return WithModule(module,
                      [&](const Module& found) { return CopyPath(DrivePathOf(found.Path()), path, chars); });
}

DWORD GetModuleFileNameA(HMODULE module, char* path, DWORD chars)
{
    return WithModule(module, [&](const Module& found) {
        return CopyPath(ToUtf8(DrivePathOf(found.Path())), path, chars);
    });
}
