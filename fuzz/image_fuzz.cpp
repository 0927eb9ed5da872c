// Any file into the reader of version resources. The file is one in memory; its resource is copied to
// a block of exactly its size, so that the sanitizer sees any access behind it.
#include "require.h"
#include "vx/osversion.h"
#include "vx/platform/version.h"

#include <memory>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using vxfuzz::Require;

// Reads every character or byte of the value.
void Query(const void* block, const char16_t* path)
{
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block, path, &value, &length))
        return;
    volatile uint8_t read = 0;
    for (UINT i = 0; i < length; ++i)
        read = static_cast<const uint8_t*>(value)[i];
    (void)read;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const int file = memfd_create("image", 0);
    static const std::string name = "C:/proc/self/fd/" + std::to_string(file);
    static const std::u16string path(name.begin(), name.end());
    Require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == ssize_t(size));
    const DWORD bytes = GetFileVersionInfoSizeW(path.c_str(), nullptr);
    Require(bytes <= size);
    if (bytes > 0) {
        const auto block = std::make_unique<uint8_t[]>(bytes);
        Require(GetFileVersionInfoW(path.c_str(), 0, bytes, block.get()));
        for (const char16_t* query :
             {u"\\", u"\\VarFileInfo\\Translation", u"\\StringFileInfo\\040904B0\\Key"})
            Query(block.get(), query);
    }
    char16_t text[8];
    VxVersion_GetString(path.c_str(), u"Key", text, 8);
    return 0;
}
