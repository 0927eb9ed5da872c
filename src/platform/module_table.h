// The modules that are loaded, and their handles.
#pragma once

#include "platform/byte_source.h"
#include "platform/resource_image.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/module.h"

#include <atomic>
#include <cstddef>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

namespace vxplatform {

// A loaded module. It never changes; the last reference to it unloads it.
class Module
{
public:
    // Takes over one reference of dlopen.
    Module(HMODULE handle, void* code, std::string path);
    // A file of resources alone, or the resources of a file of code.
    Module(MappedFile file, std::string path);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    HMODULE Handle() const { return handle_; }
    bool IsCode() const { return code_ != nullptr; }
    bool IsModule() const { return IsCode() || isElf_ || resources_.IsImage(); }
    // The host path, absolute.
    const std::string& Path() const { return path_; }
    const FileIdentity& Identity() const { return file_.Identity(); }
    const ResourceImage& Resources() const { return resources_; }
    // Whether the address lies in the bytes of which the resources are a part.
    bool Holds(const void* address) const;
    // Null where the module itself exports no such name.
    void* Export(const char* name) const;

private:
    friend class ModulePointer;
    void OpenResources();

    mutable std::atomic<uint32_t> references_{0};
    HMODULE handle_;
    void* code_ = nullptr; // what dlopen gave
    std::string path_;
    MappedFile file_;   // the module's own
    MappedFile beside_; // the file of its resources, where they are not in its own
    bool isElf_ = false;
    ResourceImage resources_;
};

// A counted reference. (The standard one would show symbols of its own in the library.)
class ModulePointer
{
public:
    ModulePointer(std::nullptr_t = nullptr) {}
    explicit ModulePointer(const Module* module) : module_(module)
    {
        if (module_)
            module_->references_.fetch_add(1, std::memory_order_relaxed);
    }
    ModulePointer(const ModulePointer& other) : ModulePointer(other.module_) {}
    ModulePointer(ModulePointer&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
    ModulePointer& operator=(ModulePointer other) noexcept
    {
        std::swap(module_, other.module_);
        return *this;
    }
    ~ModulePointer()
    {
        if (module_ && module_->references_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete module_;
    }

    const Module& operator*() const { return *module_; }
    const Module* operator->() const { return module_; }
    explicit operator bool() const { return module_ != nullptr; }

private:
    const Module* module_ = nullptr;
};

// What GetModuleFileNameW(null) names.
ModulePointer Executable();

// The module with this handle, the executable for null; null where there is none. A shared object that
// others loaded becomes known by this, and stays loaded.
ModulePointer FindModule(HMODULE handle);
// The same, whose image (not its resources) holds the address.
ModulePointer FindModuleOfCode(const void* address);
// The loaded module whose resources lie around the address.
ModulePointer FindModuleOfResource(const void* address);
// A loaded module by the path or the name of its file, that of others included; the case of names does not
// count.
ModulePointer FindModuleOfPath(const std::string& hostPath);
ModulePointer FindModuleOfName(const std::string& fileName);

// Counts a load of a module that was just opened, or of the one that is loaded from the same file already.
ModulePointer CountLoad(ModulePointer opened);
// False where no load of the module is counted.
bool TakeBackLoad(HMODULE handle);

// The same file from the root on, without "." and "..".
std::string AbsoluteHostPath(const char* hostPath);

// Opens shared objects. A name without a folder is searched for by the system. Null where there is none;
// dlerror then says why.
ModulePointer OpenCode(const std::string& path);

// What call() gives; its empty value, with the last error set, without memory.
template <class Call>
std::invoke_result_t<Call> WithMemory(Call call)
try {
    return call();
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return {};
}

// Calls use(module); an empty value with the last error set for a handle that is none.
template <class Use>
auto WithModule(HMODULE handle, Use use)
{
    using Result = std::invoke_result_t<Use, const Module&>;
    return WithMemory([&]() -> Result {
        if (const ModulePointer module = FindModule(handle))
            return use(*module);
        SetLastError(ERROR_INVALID_HANDLE);
        return {};
    });
}

} // namespace vxplatform
