#include "platform/module_table.h"

#include "platform/elf_section.h"
#include "platform/utf8.h"
#include "vx/platform/strings.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <mutex>
#include <utility>
#include <vector>

namespace vxplatform {
namespace {

constexpr const char* kExecutable = "/proc/self/exe"; // also where its file was replaced
constexpr std::string_view kSection = ".vxres", kExtension = ".res";

struct Slot
{
    ModulePointer module;
    uint32_t loads = 0; // by LoadLibraryW and its kin
    bool stays = false; // loaded by others; never given up
};

struct Table
{
    std::mutex lock; // never held while code is loaded or unloaded, which may call back
    std::vector<Slot> slots;
};

Table& Modules()
{
    static Table& table = *new Table; // never destroyed: static destructors may unload modules
    return table;
}

// The first slot that matches; null where there is none. Under the lock.
template <class Matches>
Slot* FindSlot(Matches matches)
{
    std::vector<Slot>& slots = Modules().slots;
    const auto found = std::ranges::find_if(slots, [&](const Slot& slot) { return matches(*slot.module); });
    return found == slots.end() ? nullptr : &*found;
}

template <class Matches>
ModulePointer FindLoaded(Matches matches)
{
    const std::lock_guard guard(Modules().lock);
    const Slot* slot = FindSlot(matches);
    return slot ? slot->module : nullptr;
}

// Where the image begins that holds an address; null where none does.
void* ImageBase(const void* address)
{
    Dl_info info;
    return dladdr(address, &info) ? info.dli_fbase : nullptr;
}

const link_map* LinkMap(void* code)
{
    link_map* map = nullptr;
    return dlinfo(code, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

std::string ExecutablePath()
{
    std::error_code failed;
    return std::filesystem::read_symlink(kExecutable, failed).string();
}

// The loader names the executable by an empty text.
std::string PathOfLoaded(const char* name)
{
    return *name ? AbsoluteHostPath(name) : ExecutablePath();
}

std::string FileName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

// Beside libtools.so.2 it is libtools.res, beside host and host.run host.res.
std::string PathOfResourceFile(const std::string& path)
{
    const size_t start = path.rfind('/') + 1;
    size_t end = path.find(".so", start);
    if (end == path.npos || (end + 3 < path.size() && path[end + 3] != '.'))
        end = path.rfind('.');
    if (end == path.npos || end <= start)
        end = path.size();
    return path.substr(0, end).append(kExtension);
}

// Takes over a reference to a shared object.
ModulePointer ModuleOfCode(void* code)
{
    const link_map* map = code ? LinkMap(code) : nullptr;
    void* base = map ? ImageBase(map->l_ld) : nullptr;
    if (!base) {
        if (code)
            dlclose(code);
        return nullptr;
    }
    if (ModulePointer known = FindLoaded([&](const Module& module) { return module.Handle() == base; })) {
        dlclose(code);
        return known;
    }
    return ModulePointer(new Module(base, code, PathOfLoaded(map->l_name)));
}

// Knows from now on what others loaded. The reference keeps its address from being another's.
ModulePointer Adopt(void* code)
{
    ModulePointer opened = ModuleOfCode(code);
    if (!opened)
        return nullptr;
    const std::lock_guard guard(Modules().lock);
    if (Slot* slot = FindSlot([&](const Module& module) { return module.Handle() == opened->Handle(); }))
        return slot->module;
    Modules().slots.push_back({opened, 0, true});
    return opened;
}

// What is loaded already, under the name by which the loader knows it.
void* OpenLoaded(const char* name)
{
    return *name ? dlopen(name, RTLD_NOW | RTLD_NOLOAD) : dlopen(nullptr, RTLD_NOW);
}

std::vector<std::string> LoadedNames()
{
    std::vector<std::string> names;
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* out) {
            static_cast<std::vector<std::string>*>(out)->emplace_back(info->dlpi_name);
            return 0;
        },
        &names);
    return names;
}

// Among the shared objects that others loaded.
template <class Matches>
ModulePointer AdoptFirst(Matches matches)
{
    for (const std::string& name : LoadedNames())
        if (matches(PathOfLoaded(name.c_str())))
            if (ModulePointer module = Adopt(OpenLoaded(name.c_str())))
                return module;
    return nullptr;
}

template <class Matches>
ModulePointer FindByPath(Matches matches)
{
    ModulePointer module = FindLoaded([&](const Module& loaded) { return matches(loaded.Path()); });
    return module ? module : AdoptFirst(matches);
}

} // namespace

Module::Module(HMODULE handle, void* code, std::string path)
    : handle_(handle), code_(code), path_(std::move(path)),
      file_(path_ == ExecutablePath() ? kExecutable : path_.c_str())
{
    OpenResources();
}

Module::Module(MappedFile file, std::string path)
    : handle_(const_cast<std::byte*>(file.Content().data())), path_(std::move(path)), file_(std::move(file))
{
    OpenResources();
}

Module::~Module()
{
    if (code_)
        dlclose(code_);
}

void Module::OpenResources()
{
    isElf_ = IsElf(file_.Content());
    if (!isElf_) {
        resources_ = ResourceImage(file_.Content());
        return;
    }
    const std::span<const std::byte> section = FindElfSection(file_.Content(), kSection);
    if (section.empty())
        beside_ = MappedFile(PathOfResourceFile(path_).c_str());
    resources_ = ResourceImage(section.empty() ? beside_.Content() : section);
}

bool Module::Holds(const void* address) const
{
    for (const MappedFile* file : {&file_, &beside_}) {
        const std::span<const std::byte> bytes = file->Content();
        // An empty resource may lie at the end.
        if (!bytes.empty() && !std::less<>()(address, bytes.data()) &&
            !std::less<>()(bytes.data() + bytes.size(), address))
            return true;
    }
    return false;
}

// The loader also finds the exports of what the module needs, the executable's everything that is loaded.
void* Module::Export(const char* name) const
{
    void* found = code_ ? dlsym(code_, name) : nullptr;
    return found && ImageBase(found) == handle_ ? found : nullptr;
}

ModulePointer Executable()
{
    static const ModulePointer& executable = *new ModulePointer(Adopt(OpenLoaded("")));
    return executable;
}

ModulePointer FindModule(HMODULE handle)
{
    if (!handle)
        return Executable();
    if (ModulePointer module = FindLoaded([&](const Module& loaded) { return loaded.Handle() == handle; }))
        return module;
    return ImageBase(handle) == handle ? FindModuleOfCode(handle) : nullptr;
}

ModulePointer FindModuleOfCode(const void* address)
{
    Dl_info info;
    link_map* map = nullptr;
    if (!dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) || !map)
        return nullptr;
    if (ModulePointer module =
            FindLoaded([&](const Module& loaded) { return loaded.Handle() == info.dli_fbase; }))
        return module;
    return Adopt(OpenLoaded(map->l_name));
}

ModulePointer FindModuleOfResource(const void* address)
{
    return FindLoaded([&](const Module& module) { return module.Holds(address); });
}

ModulePointer FindModuleOfPath(const std::string& hostPath)
{
    return FindByPath([&](const std::string& path) { return path == hostPath; });
}

ModulePointer FindModuleOfName(const std::string& fileName)
{
    const std::u16string wanted = ToUtf16(fileName);
    return FindByPath([&](const std::string& path) {
        return lstrcmpiW(ToUtf16(FileName(path)).c_str(), wanted.c_str()) == 0;
    });
}

ModulePointer CountLoad(ModulePointer opened)
{
    const auto isSame = [&](const Module& module) {
        return module.Handle() == opened->Handle() ||
               (!module.IsCode() && !opened->IsCode() && module.Identity() == opened->Identity());
    };
    const std::lock_guard guard(Modules().lock);
    Slot* slot = FindSlot(isSame);
    if (!slot)
        slot = &Modules().slots.emplace_back(Slot{std::move(opened)});
    ++slot->loads;
    return slot->module;
}

bool TakeBackLoad(HMODULE handle)
{
    ModulePointer last; // given up behind the lock
    const std::lock_guard guard(Modules().lock);
    Slot* slot = FindSlot([&](const Module& module) { return module.Handle() == handle; });
    if (!slot || slot->loads == 0)
        return false;
    if (--slot->loads == 0 && !slot->stays) {
        last = std::move(slot->module);
        Modules().slots.erase(Modules().slots.begin() + (slot - Modules().slots.data()));
    }
    return true;
}

std::string AbsoluteHostPath(const char* hostPath)
{
    std::error_code failed; // where the working directory is gone
    return std::filesystem::absolute(hostPath, failed).lexically_normal().string();
}

ModulePointer OpenCode(const std::string& path)
{
    return ModuleOfCode(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
}

} // namespace vxplatform
