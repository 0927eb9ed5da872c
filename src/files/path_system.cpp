// Paths with the system's help. The long form has the names as they are on disk.
#include "files/path.h"
#include "vx/path.h"
#include "vx/platform/files.h"
#include "vx/platform/module.h"

namespace {

using namespace vx;

// The system's room is unsigned.
uint32_t Room(int32_t chars)
{
    return uint32_t(std::max(chars, 0));
}

bool IsDelivered(uint32_t result, int32_t chars)
{
    return result > 0 && result < Room(chars);
}

// What fits of a text, whose long form may not.
int32_t LengthOf(const char16_t* text)
{
    return int32_t(ViewOf(text).size());
}

} // namespace

int32_t VxGetLongPathName(const char16_t* src, char16_t* dst, int32_t dstChars)
{
    const uint32_t result = GetLongPathNameW(src, dst, Room(dstChars));
    if (!IsDelivered(result, dstChars) && src != dst)
        CopyCut(ViewOf(src), dst, dstChars);
    return int32_t(result);
}

int32_t VxGetFullPathName(const char16_t* path, int32_t chars, char16_t* dst, char16_t** filePart)
{
    const uint32_t result = GetFullPathNameW(path, Room(chars), dst, nullptr);
    if (!IsDelivered(result, chars))
        return int32_t(result);
    VxGetLongPathName(dst, dst, chars);
    if (filePart)
        *filePart = VxGetFileNamePtrW(dst);
    return LengthOf(dst);
}

int32_t VxGetTempPath(int32_t chars, char16_t* dst)
{
    const uint32_t result = GetTempPathW(Room(chars), dst);
    if (!IsDelivered(result, chars))
        return int32_t(result);
    VxGetLongPathName(dst, dst, chars);
    return LengthOf(dst);
}

int32_t VxGetModuleFileName(HMODULE module, char16_t* dst, int32_t dstChars)
{
    char16_t file[kMaxPath];
    if (GetModuleFileNameW(module, file, kMaxPath) == 0)
        return CopyCut(u"", dst, dstChars);
    VxGetLongPathName(file, dst, dstChars);
    return dstChars > 0 ? LengthOf(dst) : 0;
}

int32_t VxGetModulePath(HMODULE module, char16_t* dst, int32_t dstChars)
{
    char16_t file[kMaxPath];
    if (VxGetModuleFileName(module, file, kMaxPath) == 0)
        return CopyCut(u"", dst, dstChars);
    return VxGetPathNameFromFilePath(file, dst, dstChars);
}

int32_t VxQualifyPath(const char16_t* path, char16_t* dst, int32_t chars)
{
    return IsDelivered(GetFullPathNameW(path, Room(chars), dst, nullptr), chars) &&
           IsDelivered(uint32_t(VxGetLongPathName(dst, dst, chars)), chars);
}
