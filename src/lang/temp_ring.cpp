// The ring of temporary texts, and the conversions that write into it.
#include "lang/language.h"
#include "vx/platform/multibyte.h"

#include <algorithm>
#include <limits>

namespace vx {
namespace {

// Characters that a request takes: the text and its terminator, up to an even number.
uint64_t PieceOf(int32_t chars)
{
    return (uint64_t(chars) + 2) & ~uint64_t(1);
}

const char16_t* UnlessThereIsNoRing(HVXLANG handle, const char16_t* text)
{
    return handle->tempBuffer ? text : kEmptyText;
}

} // namespace
} // namespace vx

using namespace vx;

char16_t* VxGetTempStringBuffer(HVXLANG handle, int32_t chars)
{
    if (!handle->tempBuffer || chars < 0 || PieceOf(chars) > handle->tempCapacity)
        return nullptr;
    const LanguageLock lock(handle);
    if (handle->tempPos > handle->tempCapacity - handle->tempReserve ||
        handle->tempPos + PieceOf(chars) > handle->tempCapacity)
        handle->tempPos = 0;
    char16_t* piece = handle->tempBuffer + handle->tempPos;
    if (chars == 0)
        *piece = u'\0';
    handle->tempPos += uint32_t(PieceOf(chars));
    return piece;
}

const char16_t* VxGetPrintFromWideString(HVXLANG handle, const char16_t* text)
{
    return UnlessThereIsNoRing(handle, text);
}

const char16_t* VxGetWideFromPrintString(HVXLANG handle, const char16_t* text)
{
    return UnlessThereIsNoRing(handle, text);
}

const char16_t* VxGetPrintFromMultiByteString(HVXLANG handle, const char* text)
{
    const int32_t length = lstrlenA(text); // no character has fewer bytes than units of wide text
    char16_t* piece = VxGetTempStringBuffer(handle, length);
    if (!piece)
        return kEmptyText;
    if (length == 0 || MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, text, -1, piece, length + 1) < 2)
        piece[0] = u'\0';
    piece[length] = u'\0';
    return piece;
}

const char* VxGetMultiByteFromPrintString(HVXLANG handle, const char16_t* text)
{
    const size_t length = ViewOf(text).size();
    // Twice the characters, of two bytes each, have room for every code page: UTF-8 takes three bytes each.
    const size_t chars = 2 * length + 2, bytes = chars * sizeof(char16_t);
    const bool far = bytes > size_t(std::numeric_limits<int32_t>::max());
    char* piece = far ? nullptr : reinterpret_cast<char*>(VxGetTempStringBuffer(handle, int32_t(chars)));
    if (!piece)
        return "";
    if (length == 0 || WideCharToMultiByte(CP_ACP, 0, text, -1, piece, int(bytes), nullptr, nullptr) < 2)
        piece[0] = '\0';
    piece[bytes - 1] = '\0';
    return piece;
}
