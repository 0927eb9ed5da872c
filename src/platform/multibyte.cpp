#include "vx/platform/multibyte.h"

#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <unicode/ustring.h>

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

int Widen(char16_t* to, int room, const char* from, int length, UErrorCode& error)
{
    int32_t written = 0;
    u_strFromUTF8WithSub(to, room, &written, from, length, kReplacement, nullptr, &error);
    return written;
}

int Narrow(char* to, int room, const char16_t* from, int length, UErrorCode& error)
{
    int32_t written = 0;
    u_strToUTF8WithSub(to, room, &written, from, length, kReplacement, nullptr, &error);
    return written;
}

// Both directions. The converter counts what it has no room for, and terminates where there is room.
template <class To, class From>
int Convert(int (*convert)(To*, int, const From*, int, UErrorCode&), UINT codePage, const From* from,
            int length, To* to, int room)
{
    const bool knownPage = codePage == CP_ACP || codePage == CP_UTF8;
    if (!knownPage || !from || length == 0 || length < -1 || room < 0 || (room > 0 && !to))
        return Fail(ERROR_INVALID_PARAMETER);
    UErrorCode error = U_ZERO_ERROR;
    const int needed = convert(to, room, from, length, error) + (length == -1);
    if (room == 0)
        return needed;
    return U_FAILURE(error) || needed > room ? Fail(ERROR_INSUFFICIENT_BUFFER) : needed;
}

} // namespace

int lstrlenA(const char* text)
{
    constexpr size_t kMost = std::numeric_limits<int>::max();
    return text ? int(std::min(std::strlen(text), kMost)) : 0;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* from, int fromBytes, WCHAR* to, int toChars)
{
    if (flags & ~MB_PRECOMPOSED)
        return Fail(ERROR_INVALID_FLAGS);
    return Convert<char16_t, char>(Widen, codePage, from, fromBytes, to, toChars);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* from, int fromChars, char* to, int toBytes,
                        const char* defaultCharacter, BOOL* usedDefault)
{
    if (flags)
        return Fail(ERROR_INVALID_FLAGS);
    if (defaultCharacter || usedDefault)
        return Fail(ERROR_INVALID_PARAMETER);
    return Convert<char, char16_t>(Narrow, codePage, from, fromChars, to, toBytes);
}
